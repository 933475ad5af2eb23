#include "frontend/frmMain.h"

#include "base/text.h"
#include "frontend/frmConnect.h"
#include "frontend/gameSocket.h"
#include "frontend/updateCheck.h"
#include "network/chat.h"
#include "network/receive.h"
#include "network/session.h"
#include "platform/backend.h"
#include "store/store.h"

namespace kelvora {

FormSlot<FrmMain> frmMain;

namespace {

constexpr const char* stateNames[] = {"Closed",    "Open",     "Listening",  "Connection pending",
                                      "Resolving", "Resolved", "Connecting", "Connected",
                                      "Closing",   "Error"};

Colour stateColour(SocketState state) {
  switch (state) {
    case sckConnected:
      return RGB(128, 255, 128);
    case sckResolvingHost:
    case sckHostResolved:
    case sckConnecting:
      return RGB(255, 192, 128);
    case sckClosed:
    case sckClosing:
      return RGB(255, 128, 128);
    default:
      return RGB(128, 128, 128);
  }
}

}  // namespace

FrmMain::FrmMain()
    : Form("Kelvora", {.clientWidth = 13410, .clientHeight = 10050, .border = Border::Sizable, .back = black}) {
  canvas.MousePointer = 99;
  lblTmp.Visible = false;
  txtChat.TabIndex = 0;
  loadPictures();
  connectHandlers();
  connectMenu();
  connectSocket();
}

void FrmMain::loadPictures() {
  const std::string assets = applicationPath() + "/assets/";
  picRadar.setPicture(LoadPicture(assets + "radarGrid.png"));
  for (int colour = 0; colour <= imgUserColor.UBound; ++colour) {
    imgUserColor[colour].Picture = LoadPicture(assets + "userColor" + std::to_string(colour) + ".png");
  }
}

void FrmMain::connectHandlers() {
  Resize = [this] { resizeControls(); };

  canvas.KeyDown = [this](int KeyCode, int) { canvasKeyDown(KeyCode); };
  canvas.KeyPress = [this](int KeyAscii) { canvasKeyPress(KeyAscii); };
  canvas.MouseDown = [this](int Button, int, float, float) { canvasMouseDown(Button); };
  canvas.MouseMove = [this](int Button, int, float X, float Y) { canvasMouseMove(Button, X, Y); };
  canvas.MouseUp = [this](int, int, float, float) { isLockMouse_ = false; };
  lbcConnect.Click = [this] { openConnectDialog(); };

  for (int colour = 0; colour <= lbUserName.UBound; ++colour) {
    const auto index = static_cast<std::int16_t>(colour);
    lbUserName[colour].MouseDown = [index](int, int, float, float) { netMan::nameMouseDown(index); };
    lbUserName[colour].MouseUp = [index](int, int, float, float) { netMan::nameMouseUp(index); };
  }
  lblPrivChat.MouseDown = [](int Button, int, float, float) { netMan::privateLabelMouseDown(Button); };
  lblPrivChat.MouseUp = [](int, int, float, float) { netMan::privateLabelMouseUp(); };

  txtChat.KeyDown = [this](int KeyCode, int Shift) {
    netMan::chatKeyDown(KeyCode);
    canvas.KeyDown(KeyCode, Shift);
  };
  txtChat.KeyPress = [](int KeyAscii) { netMan::chatKeyPress(KeyAscii); };
  txtChat.secretAt = netMan::secretAt;

  btnShop.Click = [] { modMain::openStore(); };
  btnSpawn.Click = [] { netMan::requestSpawn(); };
  tmrCheckNetStatus.Timer = [this] { showConnectionState(); };
  // A closed or failed socket stays in its state until it is told to connect or close.
  tmrCheckNetStatus.mayRest = [this] { return sock.State() == sckClosed || sock.State() == sckError; };
  sock.onCommand = [this] { tmrCheckNetStatus.wake(); };
}

void FrmMain::connectSocket() {
  sock.onConnect = [this] {
    showConnectionState();
    netMan::sendLogin();
  };
  sock.onClose = [this] {
    netMan::disconnectFromServer();
    showConnectionState();
  };
  sock.onDataArrival = netMan::readSocket;
  sockUpdates.onConnect = [] { updateCheck::connected(); };
  sockUpdates.onDataArrival = [] { updateCheck::dataArrived(); };
  sockUpdates.onClose = [] { updateCheck::closedByHost(); };
}

Winsock& gameSocket() { return frmMain->sock; }

// Quirk Q-036: sends, saves and closes nothing. The server finds out by itself.
void FrmMain::unloading() { endProcess(); }

void FrmMain::openConnectDialog() {
  if (frmConnect.isVisible()) {  // already open without blocking, since the start or a disconnection
    frmConnect->SetFocus();
    return;
  }
  frmConnect->Show(Modality::Modal);
}

void FrmMain::showConnectionState() {
  const SocketState state = sock.State();
  lblNetStatus.Caption = stateNames[state];
  lblNetStatus.BackColor = stateColour(state);
}

void FrmMain::resizeControls() {
  // Quirk Q-038: there is no minimum size. In a window too small for it, the canvas keeps its last size, and the other
  // controls are placed next to that.
  resumeNext([this] { canvas.Width = Width - 2165; });
  resumeNext([this] { canvas.Height = Height - 1755; });
  resumeNext([this] { frmUsers.Left = canvas.Width + 105; });
  resumeNext([this] { Label2.Left = canvas.Width + 225; });
  resumeNext([this] { lblCredits.Left = canvas.Width + 285; });
  resumeNext([this] { btnShop.Left = canvas.Width + 225; });
  resumeNext([this] { btnSpawn.Left = canvas.Width + 225; });
  resumeNext([this] { Label3.Left = canvas.Width + 45; });
  resumeNext([this] { picRadar.Left = canvas.Width + 105; });
  resumeNext([this] { lblPrivChat.Top = canvas.Height + 105; });
  // Quirk Q-234: the chat entry and the status bar follow the height only, so they don't widen with the window.
  resumeNext([this] { txtChat.Top = lblPrivChat.Top; });
  resumeNext([this] { frame_Status.Top = canvas.Height + 465; });
}

}  // namespace kelvora
