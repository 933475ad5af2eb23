#pragma once

#include <QWidget>
#include <vector>

#include "platform/control.h"
#include "platform/form.h"

namespace kelvora::hands {

// A user's hands and eyes. Clicks and keys enter the toolkit like those of a window system, so a modal window blocks
// them. Nothing happens for widgets that are not on the screen.

/// The forms of the game that are on the screen.
std::vector<Form*> visibleForms();
/// The message boxes that are on the screen.
std::vector<QWidget*> visibleBoxes();
/// The window of a visible form.
QWidget& windowOf(Form& form);

void click(QWidget& widget);
void click(Control& control);
void doubleClick(QWidget& widget, QPoint place);
/// Chooses an item of the main window's menu bar, by the texts of menu and item.
void choose(const QString& menu, const QString& item);
/// Presses a key in the active window.
void press(int key, const QString& text = {});
/// Clicks on a text box and replaces its text.
void replaceText(Control& box, const QString& text);
/// Activates the window at the next turn of the event loop.
void activate(QWidget& window);
/// Closes the window with the button in its title bar.
void close(QWidget& window);

/// True if a mouse press reaches the window. Its widgets don't see the press.
bool takesClicks(QWidget& window);
/// True if the window can be activated and then gets a key. Its widgets don't see the key. Runs pending events.
bool takesKeys(QWidget& window);

}  // namespace kelvora::hands
