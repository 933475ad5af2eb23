#pragma once

#include <QColor>
#include <QPalette>

namespace kelvora {

/// Gives all windows of the program the game's dark looks, whatever the desktop's are: its dialogs and boxes too.
void installGameLooks();

/// Shades of the native controls on a dark ground of this colour.
QPalette gamePalette(const QColor& ground);

}  // namespace kelvora
