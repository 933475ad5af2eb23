#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// Chat: lines for all or for one partner, their history, and the console commands.
namespace kelvora::netMan {

enum class ChatMode : std::uint8_t { Public, Private };

extern ChatMode chatMode;
extern std::int16_t privateTargetIndex;  ///< playerIndex of the partner
extern std::string privateTargetName;    ///< empty until a partner is chosen

/// Handles a line from txtChat: a console command after a tilde, otherwise a chat line for the server.
void sendChat(const std::string& text);
/// Keeps only characters 32 to 127.
std::string filterChatText(const std::string& text);
/// Where a command to the server begins behind its "!", which may contain a password; npos if the line has none.
std::size_t secretAt(const std::string& line);
/// Private starts private chat if a partner is set. Anything else is public chat.
void setChatMode(ChatMode mode);
ChatMode getChatMode();
/// Selects the partner by name and starts private chat.
void selectPrivateTarget(const std::string& name);
/// Steps through the typed lines: -1 back, 1 forward. 0 stores the line of txtChat.
void stepChatHistory(std::int16_t direction);
/// Runs `verb` or `verb:argument`, without the tilde. Unknown verbs do nothing. RuntimeFault for a missing or invalid
/// argument.
void runConsoleCommand(const std::string& command);

// Events of the chat controls, called by frmMain's handlers, which then pass every key of txtChat on to the canvas.
void chatKeyDown(int KeyCode);
void chatKeyPress(int KeyAscii);
void privateLabelMouseDown(int Button);
void privateLabelMouseUp();
void nameMouseDown(std::int16_t index);  ///< index into lbUserName
void nameMouseUp(std::int16_t index);

/// The first connected opponent with that name, ignoring case; 0 if there is none.
std::int16_t indexFromName(const std::string& name);

}  // namespace kelvora::netMan
