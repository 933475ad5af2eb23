#include <cstdlib>

#include "app/recordToFile.h"
#include "platform/desktop/runDesktop.h"

// The program reads its arguments itself, because those of a plain `main` lack characters.
extern "C" int wmain(int, wchar_t**) {
  // The design pace, in ms. Players start this program itself, by a double-click or from the taskbar.
  constexpr const char* pace = "KELVORA_FRAME_MS";
  if (std::getenv(pace) == nullptr) _putenv_s(pace, "10");
  return kelvora::runDesktop(0, nullptr, kelvora::startGameRecorded);
}
