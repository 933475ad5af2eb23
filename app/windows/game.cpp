#include "app/recordToFile.h"
#include "platform/desktop/runDesktop.h"

// The program reads its arguments itself, because those of a plain `main` lack characters.
extern "C" int wmain(int, wchar_t**) { return kelvora::runDesktop(0, nullptr, kelvora::startGameRecorded); }
