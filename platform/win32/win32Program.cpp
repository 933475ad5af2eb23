#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/desktop/dataFolder.h"
#include "platform/desktop/helpText.h"
#include "platform/desktop/runDesktop.h"
#include "platform/win32/formPeer.h"
#include "platform/win32/wideText.h"
#include "platform/win32/win32Backend.h"
#include "platform/windowing/faultReport.h"
#include "platform/windowing/handlerCall.h"

namespace kelvora {

namespace {

/// The arguments of `wmain`. Parsing them by the system's function would load the shell.
std::string joinedArguments() {
  std::string line;
  for (int i = 1; i < __argc; ++i) line += (i > 1 ? " " : "") + fromWide(__wargv[i]);
  return line;
}

/// A program with windows has no console of its own, but may have been started from one.
void print(const std::string& text) {
  if (GetStdHandle(STD_OUTPUT_HANDLE) == nullptr && AttachConsole(ATTACH_PARENT_PROCESS) != 0) {
    if (std::freopen("CONOUT$", "w", stdout) == nullptr) return;
  }
  std::fputs(text.c_str(), stdout);
  std::fflush(stdout);
}

bool handleInfoOptions(const std::string& arguments) {
  if (arguments == "--help") {
    print(helpText);
    return true;
  }
  if (arguments != "--version") return false;
  print("kelvora " + appVersionText() + "\npictures and sounds: " + dataFolder() +
        "\nsettings: HKEY_CURRENT_USER\\Software\\kelvora\n");
  return true;
}

void showFaultBox(const std::string& error, const std::string& advice) {
  MessageBoxW(activeForm(), toWide(error + "\n\n" + advice).c_str(), L"Kelvora", MB_OK | MB_ICONERROR);
}

}  // namespace

int runDesktop(int, char**, void (*game)()) {
  const std::string commandLine = joinedArguments();
  if (handleInfoOptions(commandLine)) return 0;
  INITCOMMONCONTROLSEX kinds{sizeof(INITCOMMONCONTROLSEX),
                             ICC_STANDARD_CLASSES | ICC_BAR_CLASSES | ICC_LISTVIEW_CLASSES};
  InitCommonControlsEx(&kinds);
  setFaultBox(showFaultBox);
  Win32Backend desktop(commandLine);
  installBackend(&desktop);
  runGame(game);
  return 0;
}

}  // namespace kelvora
