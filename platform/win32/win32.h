#pragma once

// The system's headers, without their macros that are names of the game. Include this instead of <windows.h>.

#include <winsock2.h>
// First.
#include <commctrl.h>
#include <windows.h>

#undef RGB
#undef SRCAND
#undef SRCCOPY
#undef SRCPAINT
