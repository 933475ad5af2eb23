#include "platform/qt/programArguments.h"

#include <QCoreApplication>
#include <cstdio>
#include <string>
#include <string_view>

#include "platform/backend.h"
#include "platform/desktop/dataFolder.h"
#include "platform/desktop/helpText.h"
#include "platform/desktop/soundModule.h"
#include "platform/qt/qtSettings.h"

namespace kelvora {

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
