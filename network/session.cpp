#include "network/session.h"

#include "base/fault.h"
#include "base/numbers.h"
#include "core/bounds.h"
#include "core/centreMessage.h"
#include "core/modMain.h"
#include "core/players.h"
#include "frontend/console.h"
#include "frontend/frmConnect.h"
#include "frontend/frmMain.h"
#include "frontend/gameSocket.h"
#include "network/chat.h"
#include "network/handlers.h"
#include "network/messageQueue.h"
#include "network/send.h"
#include "particles/pools.h"
#include "platform/backend.h"
#include "rendering/playerPanel.h"
#include "rendering/startLogo.h"
#include "simulation/clsPlayer.h"
#include "store/frmPowerups.h"

namespace kelvora {

namespace netMan {

using modMain::world;

std::string playerName;
std::string serverPassword;
PlayerColour preferredColour = redPlayer;

namespace {

constexpr Colour ownNameBack = RGB(128, 0, 0);

const std::string& colourName(PlayerColour colour) {
  if (colour < 0 || colour >= static_cast<std::int16_t>(modMain::world.colourNames.size())) raiseSubscriptOutOfRange();
  return modMain::world.colourNames[static_cast<std::size_t>(colour)];
}

// Quirk Q-228: the tail stays as it is. Tails age when they are painted, and departed players are not. Beyond half of
// the maximum number of vertices it is freed, so that present players never run out.
void markDeparted(clsPlayer& player) {
  player.isConnected = false;
  if (clsTail::count() > modMain::maxTailVertices / 2) player.tails.clear();
}

bool hasPlayerRow(PlayerColour colour) { return colour >= 0 && colour <= frmMain->lbUserName.UBound; }

}  // namespace

void clear() {
  playerName.clear();
  serverPassword.clear();
  preferredColour = redPlayer;
  chatMode = ChatMode::Public;
  privateTargetIndex = 0;
  privateTargetName.clear();
  messageQueue = MessageQueue{};
}

void connectToServer(const std::string& name, const std::string& address, std::int16_t port,
                     const std::string& password, PlayerColour colour) {
  playerName = name;
  serverPassword = password;
  preferredColour = colour;
  Winsock& sock = gameSocket();
  // Quirk Q-240: closes the socket but not the session, so the old opponents stay connected. If the new server reuses
  // one's node, the old opponent is found first and gets the newcomer's messages.
  if (sock.State() > sckClosed) sock.Close();
  sock.RemoteHost = address;
  sock.RemotePort = port;
  if (sock.State() != sckClosed) sock.Close();
  sock.Connect();
  // Quirk Q-069: the menu claims a connection before there is one, and a failure doesn't change it back.
  frmMain->mnuFileConnect.Enabled = false;
  frmMain->mnuFileDisconnect.Enabled = true;
}

// resetConnectionState leaves the opponents' names on the panel. Showing the title clears all six.
// Quirk Q-314: the chat partner stays, too.
void disconnectFromServer() {
  resumeNext([] {
    if (gameSocket().State() > sckClosed) gameSocket().Close();
  });
  resumeNext([] { frmMain->mnuFileConnect.Enabled = true; });
  resumeNext([] { frmMain->mnuFileDisconnect.Enabled = false; });
  resumeNext(modMain::resetConnectionState);
  resumeNext(modMain::showStartLogo);
}

void sendLogin() { sendMessage<wire::msgLogin>(playerName, serverPassword, preferredColour, appVersionText()); }

void requestSpawn() {
  sendMessage<wire::msgSpawnRequest>();
  // Quirk Q-070: printed even if there is no server to ask.
  printChat("Requesting spawn permission from the server...", LineType::Plain);
}

void receiveLoginAccepted(PlayerColour colour, std::int16_t node, const std::string& name, float x, float y) {
  world.localPlayer.init(colour, localIndex, node, name);
  world.localPlayer.queuePosition({x, y});
  // Quirk Q-071: init has already created the field around the old position. This is the second one.
  modMain::createParticleField();
  world.localPlayer.isConnected = true;
  // Quirk Q-072: a colour without a name ends the login here. The next frame, without a sheet for the ball, ends the
  // program.
  printChat("Login accepted, " + name + " you are assigned the color " + colourName(colour), LineType::ServerMessage);
  modMain::showCentreMessage("Capture your opponents in a loop of your tail");
  for (int i = 0; i <= frmMain->lbUserName.UBound; ++i) {
    Label& label = frmMain->lbUserName[i];
    if (i == colour) label.Caption = name;
    label.BackColor = i == colour ? ownNameBack : black;
  }
  modMain::hideStartLogo();
}

void receivePlayerJoined(std::int16_t node, PlayerColour colour, const std::string& name, float x, float y,
                         std::int16_t alive, std::int16_t kills) {
  modMain::keepName(name);
  // A join that failed halfway has left a slot that doesn't count. It is created again.
  world.opponents.resize(static_cast<std::size_t>(world.opponentCount));
  clsPlayer& newcomer = world.opponents.emplace_back();
  newcomer.init(colour, world.opponentCount, node, name);
  newcomer.queuePosition({x, y});
  newcomer.setAlive(alive == 1);
  newcomer.setKills(kills);
  // Quirk Q-073: a newcomer always gets a new slot. Those of departed players are never reused.
  world.opponentCount = toInt16(world.opponentCount + 1.0);
  if (hasPlayerRow(colour)) frmMain->lbUserName[colour].Caption = name;
  printChat("The player " + name + " has joined as " + colourName(colour), LineType::ServerMessage);
}

void receivePlayerLeft(std::int16_t node) {
  // Quirk Q-074: an unknown node is taken for the first opponent, who then counts as departed.
  const std::int16_t index = modMain::getPlayerIndex(node);
  if (index < 0 || index >= world.opponentCount) return;
  clsPlayer& player = modMain::playerAt(index);
  printChat(player.name + " has disconnected.", LineType::ServerMessage);
  markDeparted(player);
  if (!hasPlayerRow(player.colour)) return;
  frmMain->lbUserName[player.colour].Caption = "";
  frmMain->lblKills[player.colour].Caption = "";
  frmMain->picCaps[player.colour].Cls();
  frmMain->picCaps[player.colour].Refresh();
}

void receiveRoundOver(const std::string& text) {
  // Quirk Q-206: a player with an open store never hears of the end of the round. They stay alive, and no text is kept.
  if (frmPowerups.isVisible()) return;
  world.localPlayer.setAlive(false);
  for (std::int16_t i = 0; i < world.opponentCount; ++i) modMain::playerAt(i).setAlive(false);
  modMain::world.roundMessage = text;
  printChat(text, LineType::ServerMessage);
  // Quirk Q-311: only the next respawn greys the buttons again, neither a disconnection nor a login.
  modMain::setButtonsState(true);
}

}  // namespace netMan

void modMain::resetConnectionState() {
  world.localPlayer.isConnected = false;
  for (std::int16_t i = 0; i < world.opponentCount; ++i) netMan::markDeparted(playerAt(i));
  // A server may have assigned a colour that has no label. The dialog opens anyway.
  resumeNext([] {
    Label& label = frmMain->lbUserName[world.localPlayer.colour];
    label.BackColor = black;
    label.Caption = "";
  });
  frmConnect->Show(Form::Modality::Modeless);
}

}  // namespace kelvora
