#include <windows.h>

#include "app/windows/launcher.h"

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) { return kelvora::playAgainstBots(); }
