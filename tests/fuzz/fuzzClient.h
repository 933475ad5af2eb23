#pragma once

#include <deque>
#include <functional>
#include <string>
#include <string_view>

#include "tests/fuzz/input.h"
#include "tests/support/gameTest.h"

namespace kelvora::fuzz {

/// A whole client on a machine without a screen, for one run of a target.
class FuzzClient : public GameTest {
 public:
  static constexpr char command = '\xFF';  ///< in an input: the next byte says what happens; twice it is itself

  FuzzClient();

  /// Does something that may end the program the way its rules know: by a run-time fault, or on purpose. False if it
  /// has. Whatever else is thrown is a failure.
  bool survives(const std::function<void()>& action);

  /// Hands the bytes of an input to `deliver`, cut where it says so, with the commands in between done by `act`.
  void play(Input input, const std::function<void(std::string piece)>& deliver,
            const std::function<void(char what, Input& input)>& act);

  /// Shows the bytes to `read` while the next message box stands; no more than one piece a box.
  void keepForBox(std::string piece) { forBoxes_.push_back(std::move(piece)); }
  std::function<void(const std::string& piece)> read;

  /// The far end of a connection that stands hangs up.
  static void hangUp(HeadlessSocket& socket) {
    if (socket.state() == sckConnected) socket.closeByServer();
  }

  /// All that the client has sent are whole frames with ids that a client uses.
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
