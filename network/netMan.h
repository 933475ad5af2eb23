#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora {

/// The game protocol and the session with the server.
namespace netMan {

extern std::string playerName;
extern std::string serverPassword;
extern std::int16_t preferredColour;  ///< 0 to 5

/// Puts the module back to its state at the start of the process.
void clear();

// Wire (network/receive.cpp).
/// Builds one frame and hands it to the socket; dropped in silence unless the socket is connected.
void sendMessage(std::int16_t id, const std::vector<std::string>& fields);
/// Cuts what one receive event delivered into the message queue, then works the queue through.
void receiveData(std::string_view data);
/// Handles every complete message of the queue in order.
void processMessages();

// Session (network/session.cpp).
void connectToServer(const std::string& name, const std::string& address, std::int16_t port,
                     const std::string& password, std::int16_t colour);
void disconnectFromServer();
void sendLogin();
void requestSpawn();

// Handlers of messages, each run by processMessages alone.
void receiveLoginAccepted(std::int16_t colour, std::int16_t node, const std::string& name, float x, float y);
void receivePlayerJoined(std::int16_t node, std::int16_t colour, const std::string& name, float x, float y,
                         std::int16_t alive, std::int16_t kills);
void receivePlayerLeft(std::int16_t node);
void receiveRespawn(std::int16_t node);
void receiveRoundOver(const std::string& text);
void receivePosition(std::int16_t node, float x, float y);
void receiveVelocity(std::int16_t node, float vx, float vy);
void receiveAliveState(std::int16_t node, std::int16_t alive);
void receiveFunds(std::int16_t node, double funds);
void receivePowerupOn(std::int16_t node, std::int16_t item);
void receivePowerupOff(std::int16_t node, std::int16_t item);
void receiveChat(std::int16_t node, const std::string& text);

// Chat (network/chat.cpp).
extern std::uint8_t chatMode;            ///< 0 public, 1 private
extern std::int16_t privateTargetIndex;  ///< playerIndex of the partner
extern std::string privateTargetName;    ///< empty until a partner is chosen
/// Takes one line from txtChat: a console command behind a tilde, else a chat line for the server.
void sendChat(const std::string& text);
/// Only the characters 32 to 127.
std::string filterChatText(const std::string& text);
void setChatMode(std::uint8_t mode);
std::uint8_t getChatMode();
void selectPrivateTarget(const std::string& name);
/// -1 back, 1 forward through the lines typed, 0 stores the line of txtChat.
void stepChatHistory(std::int16_t direction);
/// `verb` or `verb:argument`, without the tilde (network/consoleCommands.cpp).
void runConsoleCommand(const std::string& command);

// Events of the chat controls, called by frmMain's handlers, which pass every key of txtChat on to the canvas
// afterwards.
void chatKeyDown(int KeyCode);
void chatKeyPress(int KeyAscii);
void privateLabelMouseDown(int Button);
void privateLabelMouseUp();
void nameMouseDown(std::int16_t index);  ///< lbUserName(index)
void nameMouseUp(std::int16_t index);

/// The first connected opponent of that name, case folded; 0 if there is none.
std::int16_t indexFromName(const std::string& name);

}  // namespace netMan

}  // namespace kelvora
