#pragma once

#include <deque>
#include <functional>
#include <string>

#include "tests/fuzz/input.h"
#include "tests/support/gameTest.h"

namespace kelvora::fuzz {

/// A whole headless client for one run of a target.
class FuzzClient : public GameTest {
 public:
  /// escapes in an input: the next byte is a command, or this byte itself if doubled
  static constexpr char command = '\xFF';

  FuzzClient();

  /// Runs an action. False if it has ended the program in a permitted way: by a run-time fault, or deliberately. Any
  /// other exception is a failure.
  bool survives(const std::function<void()>& action);

  /// Passes the bytes of an input to `deliver`, split as the input says, and its commands to `act`.
  void play(Input input, const std::function<void(std::string piece)>& deliver,
            const std::function<void(char what, Input& input)>& act);

  /// Delivers the bytes during the next message box, one piece per box.
  void keepForBox(std::string piece) { forBoxes_.push_back(std::move(piece)); }
  /// Called with each of those pieces while its box is open.
  std::function<void(const std::string& piece)> read;

  /// Closes an open connection from the far end.
  static void hangUp(HeadlessSocket& socket) {
    if (socket.state() == sckConnected) socket.closeByServer();
  }

  /// Requires that everything sent so far consists of whole frames with a client's ids.
  void requireSoundFrames();

  using GameTest::machine;
  using GameTest::passEvents;
  using GameTest::server;
  using GameTest::tick;

 private:
  void TestBody() override {}

  std::deque<std::string> forBoxes_;
};

}  // namespace kelvora::fuzz
