#pragma once

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "platform/recording/recorder.h"
#include "protocol/frameReader.h"
#include "server/arena/arena.h"
#include "server/bots/botKeeper.h"
#include "tools/headless/headlessClient.h"

namespace kelvora {

/// Records a match of a whole client against bots, in one process and on a clock set by hand. A script acts as the
/// user, only by what a user can do: it changes texts and raises events of visible controls.
class RecordedMatch : private HeadlessClient, private server::ArenaOutput {
 public:
  struct Rules {
    int bots = 5;
    server::SkillLevel skill = server::SkillLevel::mixed;
    unsigned seed = 1;
    int seconds = 20;
    int frameMs = 10;
    std::map<std::pair<std::string, std::string>, std::string> settings = {};
  };
  static constexpr const char* password = "open sesame";

  using Script = std::function<void(RecordedMatch&)>;

  /// Records into the file until the time is over. Then the user closes the window.
  RecordedMatch(const std::string& file, const Rules& rules, Script script);
  void play();

  // For scripts, which run between the frames.
  int frame() const { return frame_; }
  bool every(double seconds, double at = 0) const;
  /// Fills in the connect dialog, which is open, and presses Connect.
  void logIn(const std::string& itsPassword = password);
  /// Opens the connect dialog by the menu. Logs in when it is open.
  void reconnect(const std::string& itsPassword = password);
  void type(const std::string& line);
  void steer();
  void respawn();
  /// The server's connection is lost.
  void losePower();

  bool isRecording() const { return recorder_.isRecording(); }

  int boxes = 0;
  std::string fault;  ///< that has ended the game; empty if none has
  using HeadlessClient::machine;
  using HeadlessClient::server;

 private:
  void onPass();
  void relay();
  void send(server::ClientId client, const std::string& frame) override;
  void hangUp(server::ClientId client) override;
  void log(const std::string&) override {}

  Rules rules_;
  Script script_;
  recording::Recorder recorder_;
  server::Arena arena_;
  server::BotKeeper keeper_;
  std::optional<wire::FrameReader> reader_;
  server::ClientId ourClient_ = 0;
  server::ClientId lastClient_ = 0;
  std::string toUs_;
  std::deque<std::string> underWay_;
  int frame_ = 0;
  bool isInPass_ = false;
};

}  // namespace kelvora
