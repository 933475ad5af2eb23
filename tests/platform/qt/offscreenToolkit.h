#pragma once

#include <QApplication>

#include "platform/qt/qtFonts.h"
#include "platform/qt/qtGlyphs.h"
#include "raster/surface.h"

namespace kelvora {

/// The toolkit without a screen, unless the environment asks for one, drawing the game's own fonts, for as long as this
/// exists.
class OffscreenToolkit {
 public:
  OffscreenToolkit() {
    installFontSubstitutes();
    Surface::setGlyphSource(&glyphs_);
  }
  ~OffscreenToolkit() { Surface::setGlyphSource(nullptr); }
  OffscreenToolkit(const OffscreenToolkit&) = delete;
  OffscreenToolkit& operator=(const OffscreenToolkit&) = delete;

 private:
  // Set before the application starts.
  [[maybe_unused]] const bool isOffscreen_ =
      qEnvironmentVariableIsSet("QT_QPA_PLATFORM") || qputenv("QT_QPA_PLATFORM", "offscreen");
  int argc_ = 1;
  char name_[8] = "kelvora";
  char* argv_[2] = {name_, nullptr};
  QApplication application_{argc_, argv_};
  QtGlyphSource glyphs_;
};

}  // namespace kelvora
