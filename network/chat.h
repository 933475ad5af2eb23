#pragma once

#include <cstdint>
#include <string>

/// Chat: lines for all or for one partner, their history, and the console commands.
namespace kelvora::netMan {

extern std::uint8_t chatMode;            ///< 0 public, 1 private
extern std::int16_t privateTargetIndex;  ///< playerIndex of the partner
extern std::string privateTargetName;    ///< empty until a partner is chosen
/// Takes one line from txtChat: a console command behind a tilde, else a chat line for the server.
void sendChat(const std::string& text);
/// Only the characters 32 to 127.
std::string filterChatText(const std::string& text);
/// 1 begins private chat once a partner is chosen; any other mode is public chat.
void setChatMode(std::uint8_t mode);
std::uint8_t getChatMode();
/// Chooses the partner by name and begins private chat.
void selectPrivateTarget(const std::string& name);
/// -1 back, 1 forward through the lines typed, 0 stores the line of txtChat.
void stepChatHistory(std::int16_t direction);
/// `verb` or `verb:argument`, without the tilde; an unknown verb does nothing. A missing or bad argument is
/// RuntimeFault.
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

}  // namespace kelvora::netMan
