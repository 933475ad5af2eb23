#pragma once

#include <cstdint>
#include <string>

namespace kelvora {

/// The session with the server, from the connect dialog to the disconnection.
namespace netMan {

// What the next login tells the server.
extern std::string playerName;
extern std::string serverPassword;
extern std::int16_t preferredColour;  ///< 0 to 5

/// Puts the module, its chat and its queue back to their state at the start of the process.
void clear();

/// Takes up the login's data and starts to connect; a connection that stands is closed first.
void connectToServer(const std::string& name, const std::string& address, std::int16_t port,
                     const std::string& password, std::int16_t colour);
/// Closes the connection and offers the next one. Faults on the way are passed over.
void disconnectFromServer();
void sendLogin();
/// Asks the server for a new life and says so on the console.
void requestSpawn();

}  // namespace netMan

namespace modMain {

/// The part of a disconnection that lies in the world's state.
void resetConnectionState();

}  // namespace modMain

}  // namespace kelvora
