#pragma once

#include "raster/colour.h"

namespace kelvora {

/// The dark look that windows and native controls share.
struct Looks {
  Colour ground;  ///< of windows
  Colour raised;  ///< of buttons
  Colour field = RGB(13, 15, 27);
  Colour text = RGB(238, 241, 250);
  Colour quiet = RGB(120, 126, 152);  ///< disabled text
  Colour line = RGB(104, 110, 146);
  Colour chosen = RGB(52, 104, 196);
  Colour menu = RGB(28, 31, 48);  ///< the ground of menus, which stand out from the window below
};

/// Controls on a dark background of this colour. Buttons are slightly lighter than it.
constexpr Looks looksOn(Colour ground) {
  return {.ground = ground, .raised = RGB(54 + ground.red / 2, 60 + ground.green / 2, 92 + ground.blue / 2)};
}

/// Dialogs are less dark than the game's windows, so that fields and boxes stand out.
inline constexpr Looks dialogLooks = looksOn(RGB(46, 51, 78));

}  // namespace kelvora
