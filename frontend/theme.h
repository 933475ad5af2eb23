#pragma once

#include "raster/colour.h"
#include "raster/font.h"

namespace kelvora {

// Colours and fonts of the main window. The backend substitutes a free family for one that isn't installed.
inline constexpr Colour black = RGB(0, 0, 0);
inline constexpr Colour white = RGB(255, 255, 255);
inline constexpr Colour yellow = RGB(255, 255, 0);
inline constexpr Colour green = RGB(0, 255, 0);
inline constexpr Colour cyan = RGB(0, 255, 255);
inline constexpr Colour paleYellow = RGB(255, 255, 128);
inline constexpr Colour paleGreen = RGB(128, 255, 128);

inline const FontSpec canvasFont{"Comic Sans MS", 9, true};
inline const FontSpec headingFont{"Kristen ITC", 9, true};
inline const FontSpec chatFont{"MS Sans Serif", 9.75F, true};
inline const FontSpec panelFont{"MS Sans Serif", 8.25F, false};
inline const FontSpec panelFontBold{"MS Sans Serif", 8.25F, true};

}  // namespace kelvora
