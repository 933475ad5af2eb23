#pragma once

#include <QApplication>

#include "platform/qt/qtFonts.h"
#include "platform/qt/qtGlyphs.h"
#include "raster/surface.h"

namespace kelvora {

/// The toolkit without a screen, or with that of KELVORA_TEST_PLATFORM, drawing the game's own fonts, for as long as
/// this exists.
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
  [[maybe_unused]] const bool isChosen_ =
      qputenv("QT_QPA_PLATFORM", qEnvironmentVariable("KELVORA_TEST_PLATFORM", "offscreen").toLatin1());
  int argc_ = 1;
  char name_[8] = "kelvora";
  char* argv_[2] = {name_, nullptr};
  QApplication application_{argc_, argv_};
  QtGlyphSource glyphs_;
};

}  // namespace kelvora
