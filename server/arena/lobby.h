#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "base/outcome.h"
#include "server/arena/combat.h"
#include "server/arena/gallery.h"
#include "server/arena/roster.h"
#include "server/arena/rounds.h"

namespace kelvora::server {

/// Handles connections that have not logged in, and logins. A player's login waits until a bot has made room for a
/// person, or until everybody has been told that the previous player of that colour has left.
class Lobby {
 public:
  static constexpr Millis loginTimeLimit = 10'000;
  static constexpr Millis colourPatience = 3'000;  ///< maximum wait for a bot to give up the wanted colour
  static constexpr Millis firstPingDelay = 1'000;

  /// `version` is required of clients. An empty `password` admits everybody.
  Lobby(ArenaOutput& output, Roster& roster, const Gallery& gallery, Economy& economy, Rounds& rounds, Combat& combat,
        std::string version, std::string password, std::uint32_t seed);

  /// Adds a connection. Its time to log in starts now.
  void enter(ClientId client, Role role, Millis now) { visitors_.insert({client, Visitor{now, role}}); }
  /// Removes a closed connection. Ignores a client that isn't in the lobby.
  void leave(ClientId client) { visitors_.erase(client); }
  /// `text` holds the login's fields. Ignores a client that isn't in the lobby or is already waiting.
  void login(ClientId client, std::string_view text, Millis now);
  /// Shows a newcomer all players.
  void showPlayers(ClientId newcomer) const;
  /// Retries waiting logins and drops clients whose time is up.
  void tick(Millis now);
  /// Colours held by bots that people need.
  std::vector<PlayerColour> wantedColours() const;

 private:
  struct Visitor {
    Millis since;
    Role role;
    std::optional<std::string> login{};  // its fields while it waits
    std::optional<Millis> loginSince{};
    std::optional<PlayerColour> wantedColour{};
    bool awaitsVerdict = false;  // on the name
  };

  struct Request {  // the fields of a login, in their order
    std::string_view name;
    std::string_view password;
    std::string_view colour;
    std::string_view version;
  };

  static std::optional<Request> read(std::string_view text);
  Outcome check(ClientId client, Role role, const Request& request) const;
  /// The part of the password that is for a claimed name. Nothing if the arena's own part is wrong.
  std::optional<std::string> namePassword(std::string_view password) const;
  bool mustWait(ClientId client, Visitor& visitor, std::string_view preferred, Millis now) const;
  void admit(ClientId client, const Request& request, std::vector<std::string> claimedNames, Millis now);
  void admitSpectator(ClientId client, const Request& request, std::vector<std::string> claimedNames, Millis now);
  /// The preferred colour, or another free one. Nothing if the arena is full.
  std::optional<PlayerColour> chooseColour(std::string_view preferred) const;
  Spot startSpot();
  /// Appends the skeletons of the names that players and leavers have.
  void appendTakenNames(std::vector<std::string>& skeletons) const;
  /// Tells somebody whose name has changed.
  void explainName(ClientId client, const std::string& typed, const std::string& name) const;

  ArenaOutput& output_;
  Roster& roster_;
  const Gallery& gallery_;
  Economy& economy_;
  Rounds& rounds_;
  Combat& combat_;
  const std::string version_;
  const std::string password_;
  std::mt19937 random_;
  std::map<ClientId, Visitor> visitors_;
};

}  // namespace kelvora::server
