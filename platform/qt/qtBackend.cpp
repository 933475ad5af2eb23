#include "platform/desktop/runDesktop.h"

#include <malloc.h>

#include <QApplication>
#include <clocale>
#include <optional>
#include <string>

#include "platform/desktop/processFaults.h"
#include "platform/qt/codePage.h"
#include "platform/qt/gameLooks.h"
#include "platform/qt/programArguments.h"
#include "platform/qt/qtDesktop.h"
#include "platform/qt/qtFonts.h"
#include "platform/qt/qtGlyphs.h"
#include "platform/qt/windowSystem.h"
#include "platform/windowing/handlerCall.h"
#include "raster/surface.h"

namespace kelvora {

namespace {

std::string joinedArguments(int argc, char** argv) {
  QString line;
  for (int i = 1; i < argc; ++i) line += (i > 1 ? " " : "") + QString::fromLocal8Bit(argv[i]);
  return toBytes(line);
}

/// Large blocks, which are pictures, come from the system and go back to it. Otherwise the C library keeps the memory
/// of the first one freed for later ones, and clears it by hand. All threads share one heap, because those besides the
/// game's allocate little.
void limitHeap() {
  constexpr int largeBlock = 256 * 1024;
  mallopt(M_MMAP_THRESHOLD, largeBlock);
  mallopt(M_ARENA_MAX, 1);
}

}  // namespace

int runDesktop(int argc, char** argv, void (*game)()) {
  if (handleInfoOptions(argc, argv)) return 0;
  limitHeap();
  const std::string commandLine = joinedArguments(argc, argv);
  chooseWindowSystem();
  std::optional<ScreenSearch> search(std::in_place);
  std::optional<FontsAhead> fonts(std::in_place);
  QApplication application(argc, argv);
  fonts.reset();
  search.reset();
  warnMissingFeatures();
  // The toolkit adopts the user's locale, but numbers keep their decimal point.
  std::setlocale(LC_NUMERIC, "C");
  QApplication::setApplicationName("kelvora");
  QApplication::setDesktopFileName("kelvora");
  QApplication::setQuitOnLastWindowClosed(false);
  installFontSubstitutes();
  installGameLooks();

  QtGlyphSource glyphs;
  Surface::setGlyphSource(&glyphs);
  QtDesktop desktop(commandLine);
  setProgramIconLater(desktop.applicationPath());
  installBackend(&desktop);
  ignoreFatalSignals();
  runGame(game);
  return 0;
}

}  // namespace kelvora
