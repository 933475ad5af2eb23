// Ends with 0 if clicks into the console select no text while the server runs, and do afterwards, with the standard
// input redirected. Needs a console.

#include <windows.h>

#include <cstdlib>

#include "server/system/process.h"

namespace {

const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);

DWORD mode() {
  DWORD value = 0;
  if (GetConsoleMode(input, &value) == 0) std::_Exit(2);
  return value;
}

DWORD before = 0;

}  // namespace

int main() {
  SetConsoleMode(input, mode() | ENABLE_QUICK_EDIT_MODE | ENABLE_EXTENDED_FLAGS);
  before = mode();
  if ((before & ENABLE_QUICK_EDIT_MODE) == 0) return 3;
  std::atexit([] {
    if (mode() != before) std::_Exit(5);
  });
  SetStdHandle(STD_INPUT_HANDLE, nullptr);
  kelvora::server::ignoreConsoleClicks();
  return mode() == (before & ~DWORD{ENABLE_QUICK_EDIT_MODE}) ? 0 : 4;
}
