#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/control.h"
#include "platform/form.h"
#include "platform/grid.h"

namespace kelvora::hands {

// A user's hands and eyes. Clicks and keys enter the toolkit like those of a window system, so a modal window blocks
// them. Nothing happens for widgets that are not on the screen.

/// A top-level window: the toolkit's pointer to it.
using Window = void*;

/// The forms of the game that are on the screen.
std::vector<Form*> visibleForms();
/// True if a message box is on the screen.
bool isBoxVisible();
/// The modal window that the user must answer first. Null if there is none.
Window newestModal();
bool isBox(Window window);
/// The window of a visible form.
Window windowOf(Form& form);

void click(Control& control);
/// Double-clicks the first row, or the heading of an empty list.
void doubleClick(Grid& grid);
/// Chooses an item of the main window's menu bar, by the texts of menu and item.
void choose(const std::string& menu, const std::string& item);
enum class Key { Enter, Escape };
/// Presses a key in the active window.
void press(Key key);
/// Clicks on a text box and replaces its text.
void replaceText(Control& box, const std::string& text);
/// Activates the window.
void activate(Window window);
/// Closes the window with the button in its title bar.
void close(Window window);
/// Clicks the button of a message box.
void answer(Window box);

/// True if a mouse press reaches the window. Its widgets don't see the press.
bool takesClicks(Window window);
/// True if the window can be activated and then gets a key. Its widgets don't see the key. May run pending events.
bool takesKeys(Window window);

/// Calls this at the next turn of the event loop, nested or not, after everything that the hands have done.
void atNextTurn(std::function<void()> turn);

}  // namespace kelvora::hands
