#pragma once

#include <cstdint>
#include <string>

#include "protocol/rules.h"

namespace kelvora {

/// The session with the server, from the connect dialog to the disconnection.
namespace netMan {

// The data for the next login.
extern std::string playerName;
extern std::string serverPassword;
extern PlayerColour preferredColour;

/// Resets the module, its chat and its queue to their initial state.
void clear();

/// Stores the login's data and starts connecting. Closes an existing connection first.
void connectToServer(const std::string& name, const std::string& address, std::int16_t port,
                     const std::string& password, PlayerColour colour);
/// Closes the connection and opens the connect dialog. Ignores faults on the way.
void disconnectFromServer();
/// Sends the login with the stored data.
void sendLogin();
/// Requests a new life from the server and prints a line.
void requestSpawn();

}  // namespace netMan

namespace modMain {

/// Resets the session's part of the world's state.
void resetConnectionState();

}  // namespace modMain

}  // namespace kelvora
