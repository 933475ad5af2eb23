#pragma once

#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>

namespace kelvora {

class Control;

/// The bit sum for an event's Shift.
int shiftBits(Qt::KeyboardModifiers modifiers);
/// The bit sum for an event's Button.
int buttonBits(Qt::MouseButtons buttons);
/// The Windows virtual key code, or 0 if the key has none.
int virtualKeyCode(Qt::Key key, bool onKeypad);

// Each of these raises the events of a control, in twips relative to it.

/// KeyDown, then KeyPress for each byte of code page 1252 typed.
void raiseKey(Control& control, const QKeyEvent& event);
/// KeyPress for each byte of a composed text.
void raiseComposedText(Control& control, const QInputMethodEvent& event);

void raiseMouseDown(Control& control, const QMouseEvent& event);
void raiseMouseMove(Control& control, const QMouseEvent& event);
/// MouseUp, then Click if it is the left button inside the control.
void raiseMouseUp(Control& control, const QMouseEvent& event, bool inside);
void raiseDoubleClick(Control& control, const QMouseEvent& event);

}  // namespace kelvora
