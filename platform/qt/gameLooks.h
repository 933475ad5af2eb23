#pragma once

#include <QPalette>
#include <string>

#include "platform/windowing/looks.h"

namespace kelvora {

/// Gives all windows, dialogs and boxes the game's dark look, whatever the desktop's theme.
void installGameLooks();

/// The looks as colours of native controls.
QPalette gamePalette(const Looks& looks);

/// Sets the program's icon in all available sizes, when the first events are processed: loading it earlier would delay
/// the first window. Needs a QApplication.
void setProgramIconLater(const std::string& applicationPath);

}  // namespace kelvora
