#include "network/chat.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

#include "base/text.h"
#include "core/modMain.h"
#include "core/players.h"
#include "frontend/console.h"
#include "frontend/frmMain.h"
#include "network/handlers.h"
#include "network/send.h"
#include "simulation/clsPlayer.h"

namespace kelvora::netMan {

ChatMode chatMode = ChatMode::Public;
std::int16_t privateTargetIndex = 0;
std::string privateTargetName;

namespace {

const std::string privatePrefix = "(private) ";
constexpr Colour privateBack = RGB(128, 128, 255);

bool isPrivate(const std::string& line) { return lowerCase(line.substr(0, privatePrefix.size())) == privatePrefix; }

void setChatText(const std::string& text) {
  frmMain->txtChat.Text = text;
  frmMain->txtChat.SelStart = static_cast<int>(text.size());
}

}  // namespace

void sendChat(const std::string& text) {
  if (text.empty()) return;
  if (text.front() == '~') return runConsoleCommand(text.substr(1));
  // Quirk Q-076: a line is sent even if the filter leaves nothing of it.
  std::string line = filterChatText(text);
  std::int16_t target = -1;
  if (chatMode == ChatMode::Private) {
    // Quirk Q-077: for a departed partner this is node 0.
    target = modMain::getServerNode(privateTargetIndex);
    line = privatePrefix + line;
  }
  sendMessage<wire::msgChat>(target, line);
}

void receiveChat(std::int16_t node, const std::string& text) {
  const std::int16_t index = modMain::getPlayerIndex(node);
  const std::string name = modMain::getPlayerName(index);
  LineType lineType = LineType::PublicChat;
  if (isPrivate(text)) {
    if (index == localIndex) {
      lineType = LineType::PrivateSent;
    } else {
      // Quirk Q-078: a private message makes its sender the partner, so the next line typed goes to them alone.
      privateTargetIndex = index;
      privateTargetName = name;
      setChatMode(ChatMode::Private);
      lineType = LineType::PrivateReceived;
    }
  }
  printChat("[" + name + "] " + text, lineType);
}

std::string filterChatText(const std::string& text) {
  std::string kept;
  std::copy_if(text.begin(), text.end(), std::back_inserter(kept), [](unsigned char c) { return c >= 32 && c < 128; });
  return kept;
}

// A server looks for its commands behind blanks and the private prefix, and gets no special characters.
std::size_t secretAt(const std::string& line) {
  std::size_t at = isPrivate(line) ? privatePrefix.size() : 0;
  while (at < line.size() && (line[at] <= ' ' || line[at] > '~')) ++at;
  return at < line.size() && line[at] == '!' ? at + 1 : std::string::npos;
}

void setChatMode(ChatMode mode) {
  Label& label = frmMain->lblPrivChat;
  if (mode != ChatMode::Private) {
    chatMode = ChatMode::Public;
    label.Caption = "Public Chat";
    label.BackColor = white;
  } else if (!privateTargetName.empty()) {
    chatMode = ChatMode::Private;
    label.Caption = privateTargetName;
    label.BackColor = privateBack;
  }
}

ChatMode getChatMode() { return chatMode; }

void selectPrivateTarget(const std::string& name) {
  privateTargetName = name;
  // Quirk Q-079: a name that no opponent has, even your own, is shown as the partner, but lines go to the first
  // opponent.
  privateTargetIndex = indexFromName(name);
  setChatMode(ChatMode::Private);
}

void stepChatHistory(std::int16_t direction) {
  std::array<std::string, 256>& history = frmMain->chatHistory;
  std::int16_t& position = frmMain->chatHistoryPosition;
  const auto entry = [&] { return history[static_cast<std::size_t>(position)]; };
  if (direction == -1) {
    position = static_cast<std::int16_t>(std::min(position + 1, 255));
    // Quirk Q-080: going back appends a blank to the line, going forward doesn't.
    setChatText(entry() + " ");
  } else if (direction == 1) {
    if (position == 0) return setChatText("");
    --position;
    setChatText(entry());
  } else if (direction == 0) {
    // Quirk Q-081: every round of this loop writes entry 0, so entry 1 gets the new line as well, and the former entry
    // 0 is lost. The position stays.
    for (std::size_t n = history.size() - 1; n >= 1; --n) {
      history[n] = history[n - 1];
      history[0] = frmMain->txtChat.Text;
    }
  }
}

void chatKeyDown(int KeyCode) {
  if (KeyCode == keyUp) stepChatHistory(-1);
  if (KeyCode == keyDown) stepChatHistory(1);
  if (KeyCode == keyEnter) stepChatHistory(0);
}

void chatKeyPress(int KeyAscii) {
  if (KeyAscii != keyEnter) return;
  sendChat(frmMain->txtChat.Text);
  frmMain->txtChat.Text = "";
}

void privateLabelMouseDown(int Button) {
  if (Button == leftButton) frmMain->lblPrivChat.BorderStyle = 1;
}

// Quirk Q-265: only the left button presses the label, but releasing any button changes the mode.
void privateLabelMouseUp() {
  frmMain->lblPrivChat.BorderStyle = 0;
  setChatMode(chatMode == ChatMode::Public ? ChatMode::Private : ChatMode::Public);
}

void nameMouseDown(std::int16_t index) { frmMain->lbUserName[index].BorderStyle = 1; }

void nameMouseUp(std::int16_t index) {
  frmMain->lbUserName[index].BorderStyle = 0;
  selectPrivateTarget(frmMain->lbUserName[index].Caption);
}

std::int16_t indexFromName(const std::string& name) {
  const std::string wanted = lowerCase(name);
  for (std::int16_t i = 0; i < modMain::world.opponentCount; ++i) {
    const clsPlayer& opponent = modMain::playerAt(i);
    if (opponent.isConnected && lowerCase(opponent.name) == wanted) return i;
  }
  return 0;
}

}  // namespace kelvora::netMan
