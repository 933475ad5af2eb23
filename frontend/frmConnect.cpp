#include "frontend/frmConnect.h"

#include "base/fault.h"
#include "base/numbers.h"
#include "base/text.h"
#include "frontend/frmGameFind.h"
#include "frontend/frmMain.h"
#include "network/session.h"
#include "platform/backend.h"

namespace kelvora {

FormSlot<FrmConnect> frmConnect;

namespace {

constexpr const char* loginSection = "last login";

// Borders of a circle, marked and unmarked.
constexpr int solidBorder = 1;
constexpr int dottedBorder = 3;
constexpr int markedWidth = 3;
constexpr int plainWidth = 1;

void unmark(Shape& circle) {
  circle.BorderStyle = dottedBorder;
  circle.BorderWidth = plainWidth;
}

}  // namespace

FrmConnect::FrmConnect()
    : Form("Connect", {.clientWidth = 3945, .clientHeight = 2925, .border = Border::Fixed, .systemColours = true}) {
  Control* const tabOrder[] = {&txtPlayerName, &txtServerAddress, &txtServerPort, &txtServerPassword,
                               &cmdConnect,    &cmdGetList,       &cmdCancel,     &Label1,
                               &Label2,        &Label3,           &Label4,        &Label5,
                               &lblShapeSelect};
  int tabIndex = 0;
  for (Control* control : tabOrder) control->TabIndex = tabIndex++;

  for (Shape& circle : shpUserColor) circle.BorderStyle = dottedBorder;
  shpUserColor[0].BorderStyle = solidBorder;
  shpUserColor[0].BorderWidth = markedWidth;

  lblShapeSelect.MouseDown = [this](int, int, float X, float Y) { colourRowMouseDown(X, Y); };
  cmdConnect.Click = [this] { cmdConnect_Click(); };
  cmdGetList.Click = [] { frmGameFind->Show(Modality::Modal); };
  cmdCancel.Click = [] { frmConnect.unload(); };
}

void FrmConnect::load() { loadLastLogin(); }

void FrmConnect::loadLastLogin() {
  txtPlayerName.Text = GetSetting(loginSection, "player name", "");
  txtServerAddress.Text = GetSetting(loginSection, "server address", "127.0.0.1");
  txtServerPort.Text = GetSetting(loginSection, "server port", "2010");
  txtServerPassword.Text = GetSetting(loginSection, "server password", "");
  const std::int16_t stored = toInt16(strictNumber(GetSetting(loginSection, "player color", "0")));
  if (0 <= stored && stored <= shpUserColor.UBound) selectColour(PlayerColour{stored});
  Top = frmMain->Top + 3660;
  Left = frmMain->Left + 6435;
}

void FrmConnect::saveLastLogin() {
  SaveSetting(loginSection, "player name", txtPlayerName.Text);
  SaveSetting(loginSection, "server address", txtServerAddress.Text);
  SaveSetting(loginSection, "server port", txtServerPort.Text);
  SaveSetting(loginSection, "server password", txtServerPassword.Text);
  SaveSetting(loginSection, "player color", numberText(std::int32_t{colour}));
}

void FrmConnect::selectColour(PlayerColour chosen) {
  colour = chosen;
  for (Shape& circle : shpUserColor) unmark(circle);
  shpUserColor[chosen].BorderStyle = solidBorder;
  shpUserColor[chosen].BorderWidth = markedWidth;
}

void FrmConnect::colourRowMouseDown(float X, float Y) {
  const float x = X + lblShapeSelect.Left;
  const float y = Y + lblShapeSelect.Top;
  for (int i = 0; i <= shpUserColor.UBound; ++i) {
    Shape& circle = shpUserColor[i];
    // Quirk Q-051: even if the press hits no circle. Then no circle is marked, and the old colour still counts.
    unmark(circle);
    const bool across = circle.Left <= x && x <= circle.Left + circle.Width;
    const bool down = circle.Top <= y && y <= circle.Top + circle.Height;
    if (!across || !down) continue;
    colour = static_cast<PlayerColour>(i);
    // Quirk Q-041: a click leaves the border dotted in colour 1, nearly black. That is invisible, because a border of
    // width 3 is drawn solid.
    circle.BorderColor = RGB(1, 0, 0);
    circle.BorderWidth = markedWidth;
  }
}

void FrmConnect::cmdConnect_Click() {
  // Quirk Q-042: saves the input before it is checked below.
  saveLastLogin();
  double port = 0;  // stays 0 for a number beyond a double's range, which is refused below
  resumeNext([&] { port = readNumber(txtServerPort.Text.get()); });
  // Quirk Q-231: refuses half of all ports, even 32767.
  // Quirk Q-232: rounded after this check, so 2010.5 is a port, and 0.3 passes as port 0.
  if (port <= 0 || port >= 32767) {
    MsgBox("Invalid server port number");
    return;
  }
  if (txtPlayerName.Text.get().empty()) {
    MsgBox("Please enter a name for yourself");
    return;
  }
  if (txtServerAddress.Text.get().empty()) {
    MsgBox("Please enter the address of the server");
    return;
  }
  netMan::connectToServer(txtPlayerName.Text, txtServerAddress.Text, toInt16(port), txtServerPassword.Text, colour);
  DoEvents();
  frmConnect.unload();
}

}  // namespace kelvora
