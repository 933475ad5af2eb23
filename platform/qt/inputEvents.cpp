#include "platform/qt/inputEvents.h"

#include <QtMath>
#include <array>
#include <utility>

#include "platform/control.h"
#include "platform/qt/codePage.h"
#include "platform/windowing/handlerCall.h"
#include "raster/twips.h"

namespace kelvora {

namespace {

using KeyRow = std::pair<Qt::Key, int>;

// Keys whose codes don't follow letters, digits or function keys. Punctuation goes by position on the American
// keyboard, even with Shift.
constexpr std::array<KeyRow, 70> keyRows = {{
    {Qt::Key_Backspace, 8},    {Qt::Key_Tab, 9},
    {Qt::Key_Backtab, 9},      {Qt::Key_Clear, 12},
    {Qt::Key_Return, 13},      {Qt::Key_Enter, 13},
    {Qt::Key_Shift, 16},       {Qt::Key_Control, 17},
    {Qt::Key_Alt, 18},         {Qt::Key_AltGr, 18},
    {Qt::Key_Pause, 19},       {Qt::Key_CapsLock, 20},
    {Qt::Key_Escape, 27},      {Qt::Key_Space, 32},
    {Qt::Key_PageUp, 33},      {Qt::Key_PageDown, 34},
    {Qt::Key_End, 35},         {Qt::Key_Home, 36},
    {Qt::Key_Left, 37},        {Qt::Key_Up, 38},
    {Qt::Key_Right, 39},       {Qt::Key_Down, 40},
    {Qt::Key_Select, 41},      {Qt::Key_Print, 44},
    {Qt::Key_Insert, 45},      {Qt::Key_Delete, 46},
    {Qt::Key_Help, 47},        {Qt::Key_ParenRight, 48},
    {Qt::Key_Exclam, 49},      {Qt::Key_At, 50},
    {Qt::Key_NumberSign, 51},  {Qt::Key_Dollar, 52},
    {Qt::Key_Percent, 53},     {Qt::Key_AsciiCircum, 54},
    {Qt::Key_Ampersand, 55},   {Qt::Key_Asterisk, 56},
    {Qt::Key_ParenLeft, 57},   {Qt::Key_Super_L, 91},
    {Qt::Key_Super_R, 92},     {Qt::Key_Meta, 91},
    {Qt::Key_Menu, 93},        {Qt::Key_NumLock, 144},
    {Qt::Key_ScrollLock, 145}, {Qt::Key_Semicolon, 186},
    {Qt::Key_Colon, 186},      {Qt::Key_Equal, 187},
    {Qt::Key_Plus, 187},       {Qt::Key_Comma, 188},
    {Qt::Key_Less, 188},       {Qt::Key_Minus, 189},
    {Qt::Key_Underscore, 189}, {Qt::Key_Period, 190},
    {Qt::Key_Greater, 190},    {Qt::Key_Slash, 191},
    {Qt::Key_Question, 191},   {Qt::Key_QuoteLeft, 192},
    {Qt::Key_AsciiTilde, 192}, {Qt::Key_BracketLeft, 219},
    {Qt::Key_BraceLeft, 219},  {Qt::Key_Backslash, 220},
    {Qt::Key_Bar, 220},        {Qt::Key_BracketRight, 221},
    {Qt::Key_BraceRight, 221}, {Qt::Key_Apostrophe, 222},
    {Qt::Key_QuoteDbl, 222},   {Qt::Key_VolumeMute, 173},
    {Qt::Key_VolumeDown, 174}, {Qt::Key_VolumeUp, 175},
    {Qt::Key_Cancel, 3},       {Qt::Key_Execute, 43},
}};

constexpr std::array<KeyRow, 5> keypadRows = {{
    {Qt::Key_Asterisk, 106},
    {Qt::Key_Plus, 107},
    {Qt::Key_Minus, 109},
    {Qt::Key_Period, 110},
    {Qt::Key_Slash, 111},
}};

template <std::size_t Count>
int find(const std::array<KeyRow, Count>& rows, Qt::Key key) {
  for (const KeyRow& row : rows) {
    if (row.first == key) return row.second;
  }
  return 0;
}

float toTwips(qreal pixels) { return static_cast<float>(qFloor(pixels) * twipsPerPixel); }

void raiseTyped(Control& control, const QString& text) {
  for (const char byte : toBytes(text)) raiseKeyPress(control, static_cast<unsigned char>(byte));
}

using MouseEvent = std::function<void(int, int, float, float)>;

void raiseMouse(Control& control, const MouseEvent& handler, Qt::MouseButtons buttons, const QMouseEvent& event) {
  raiseEvent(control, handler, buttonBits(buttons), shiftBits(event.modifiers()), toTwips(event.position().x()),
             toTwips(event.position().y()));
}

}  // namespace

int shiftBits(Qt::KeyboardModifiers modifiers) {
  return (modifiers.testFlag(Qt::ShiftModifier) ? shiftBit : 0) +
         (modifiers.testFlag(Qt::ControlModifier) ? controlBit : 0) +
         (modifiers.testFlag(Qt::AltModifier) ? altBit : 0);
}

int buttonBits(Qt::MouseButtons buttons) {
  return (buttons.testFlag(Qt::LeftButton) ? leftButton : 0) + (buttons.testFlag(Qt::RightButton) ? rightButton : 0) +
         (buttons.testFlag(Qt::MiddleButton) ? middleButton : 0);
}

int virtualKeyCode(Qt::Key key, bool onKeypad) {
  if (onKeypad && key >= Qt::Key_0 && key <= Qt::Key_9) return 96 + (key - Qt::Key_0);
  if (onKeypad) {
    if (const int code = find(keypadRows, key)) return code;
  }
  if (key >= Qt::Key_0 && key <= Qt::Key_9) return key;
  if (key >= Qt::Key_A && key <= Qt::Key_Z) return key;
  if (key >= Qt::Key_F1 && key <= Qt::Key_F24) return 112 + (key - Qt::Key_F1);
  return find(keyRows, key);
}

void raiseKey(Control& control, const QKeyEvent& event) {
  const int code = virtualKeyCode(static_cast<Qt::Key>(event.key()), event.modifiers().testFlag(Qt::KeypadModifier));
  const int shift = shiftBits(event.modifiers());
  const QString text = event.text();
  if (code != 0) raiseEvent(control, control.KeyDown, code, shift);
  // Del has the character 127 here but types none. Neither does a key with Alt held.
  if (event.key() == Qt::Key_Delete || event.modifiers().testFlag(Qt::AltModifier)) return;
  raiseTyped(control, text);
}

void raiseComposedText(Control& control, const QInputMethodEvent& event) { raiseTyped(control, event.commitString()); }

void raiseMouseDown(Control& control, const QMouseEvent& event) {
  raiseMouse(control, control.MouseDown, event.button(), event);
}

void raiseMouseMove(Control& control, const QMouseEvent& event) {
  raiseMouse(control, control.MouseMove, event.buttons(), event);
}

void raiseMouseUp(Control& control, const QMouseEvent& event, bool inside) {
  const bool isClick = inside && event.button() == Qt::LeftButton;
  raiseMouse(control, control.MouseUp, event.button(), event);
  if (isClick) raiseEvent(control, control.Click);
}

void raiseDoubleClick(Control& control, const QMouseEvent& event) {
  if (event.button() == Qt::LeftButton && control.DblClick) {
    raiseEvent(control, control.DblClick);
    return;
  }
  // Without a handler for double-clicks, the second press is an ordinary one.
  raiseMouseDown(control, event);
}

}  // namespace kelvora
