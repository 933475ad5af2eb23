#pragma once

#include <QColor>
#include <QPalette>

namespace kelvora {

/// Gives all windows, dialogs and boxes the game's dark look, whatever the desktop's theme.
void installGameLooks();

/// Colours of native controls on a dark background of this colour.
QPalette gamePalette(const QColor& ground);

}  // namespace kelvora
