#pragma once

#include <QColor>
#include <QPalette>
#include <string>

namespace kelvora {

/// Gives all windows, dialogs and boxes the game's dark look, whatever the desktop's theme.
void installGameLooks();

/// Colours of native controls on a dark background of this colour.
QPalette gamePalette(const QColor& ground);

/// Sets the program's icon in all available sizes, when the first events are processed: loading it earlier would delay
/// the first window. Needs a QApplication.
void setProgramIconLater(const std::string& applicationPath);

}  // namespace kelvora
