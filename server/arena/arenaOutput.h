#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/outcome.h"
#include "server/arena/clientId.h"
#include "server/arena/nameVerdict.h"
#include "server/arena/score.h"

namespace kelvora::server {

/// Drops by limits: a position, another request, or a connection that didn't log in in time.
enum class Drop : std::uint8_t { position, request, lateLogin };

/// The arena's effects on the outside world, and its questions to it. Called from within the arena's calls, and must
/// not call back.
class ArenaOutput {
 public:
  virtual ~ArenaOutput() = default;
  /// Sends one whole frame.
  virtual void send(ClientId client, const std::string& frame) = 0;
  /// Closes the connection after everything sent so far has gone out.
  virtual void hangUp(ClientId client) = 0;
  /// Logs a line for the operator, without a line break.
  virtual void log(const std::string& line) = 0;
  /// Counts what a limit has dropped.
  virtual void dropped(Drop /*what*/) {}

  /// Shows a new spectator more than the arena does. Only sends messages.
  virtual void watches(ClientId) {}
  /// Takes a command for the server: a chat line from its "!" on. Nobody else has got it.
  virtual void command(ClientId, const std::string& /*line*/) {}
  /// Refuses people who must not come in, with a text for them. Not called for bots.
  virtual Outcome mayEnter(ClientId) { return Outcome::done(); }
  /// Whether a person may play under this name, with the password for it. Called again while the answer is pending.
  virtual NameVerdict nameVerdict(ClientId, const std::string& /*name*/, const std::string& /*password*/) { return {}; }
  /// Tells what people have done in a round: all of them when it is over, or one who leaves before.
  virtual void scored(const std::vector<Score>&, bool /*isRoundOver*/) {}
  /// Why a player's lines must reach nobody, as a text for the player. Empty if they may. Not called for bots.
  virtual std::string muteReason(ClientId) { return {}; }
};

}  // namespace kelvora::server
