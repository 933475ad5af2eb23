#include "platform/qt/programArguments.h"

#include <QCoreApplication>
#include <cstdio>
#include <string>
#include <string_view>

#include "platform/backend.h"
#include "platform/desktop/dataFolder.h"
#include "platform/desktop/soundModule.h"
#include "platform/qt/qtSettings.h"

namespace kelvora {

namespace {

constexpr const char* helpText =
    "Usage: kelvora [nosound] [nomusic]\n"
    "An arena game for up to six players.\n"
    "\n"
    "  nosound    no sound effects\n"
    "  nomusic    no music\n"
    "  --version  print the version and the folders in use\n"
    "  --help     print this help\n"
    "\n"
    "Environment, with defaults:\n"
    "  KELVORA_FRAME_MS  milliseconds per frame; 10 is the design pace (as fast as possible)\n"
    "  KELVORA_DATA      folder that holds assets and sounds (found automatically)\n"
    "  KELVORA_WEB_HOST  host, or host:port, that serves the list of games and the update file\n";

}  // namespace

bool handleInfoOptions(int argc, char** argv) {
  if (argc != 2) return false;
  const std::string_view argument = argv[1];
  if (argument == "--help") {
    std::fputs(helpText, stdout);
    return true;
  }
  if (argument != "--version") return false;
  const QCoreApplication application(argc, argv);
  const std::string module = soundModulePath();
  std::printf("kelvora %s\npictures and sounds: %s\nsettings: %s\nsound module: %s\n", appVersionText().c_str(),
              dataFolder().c_str(), QtSettings::defaultPath().c_str(), module.empty() ? "missing" : module.c_str());
  return true;
}

}  // namespace kelvora
