#pragma once

// The system's headers, without their macros that are names of the game. Include this instead of <windows.h>.

#include <windows.h>
// After it.
#include <commctrl.h>

#undef RGB
#undef SRCAND
#undef SRCCOPY
#undef SRCPAINT
