#include "tests/platform/qt/desktopTest.h"

#include <QApplication>
#include <memory>

#include "platform/qt/qtDesktop.h"
#include "platform/qt/qtFonts.h"
#include "platform/qt/qtGlyphs.h"
#include "raster/surface.h"

namespace kelvora {
namespace {

/// The desktop without a screen, for all tests of this program.
class DesktopEnvironment : public ::testing::Environment {
 public:
  void SetUp() override {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    application_ = std::make_unique<QApplication>(argc_, argv_);
    installFontSubstitutes();
    Surface::setGlyphSource(&glyphs_);
    desktop_ = std::make_unique<QtDesktop>("NoSound");
    installBackend(desktop_.get());
  }
  void TearDown() override {
    installBackend(nullptr);
    Surface::setGlyphSource(nullptr);
    desktop_.reset();
    QCoreApplication::sendPostedEvents();  // connections of the last test that wait to be freed
    application_.reset();
  }

 private:
  int argc_ = 1;
  char name_[8] = "kelvora";
  char* argv_[2] = {name_, nullptr};
  std::unique_ptr<QApplication> application_;
  QtGlyphSource glyphs_;
  std::unique_ptr<QtDesktop> desktop_;
};

[[maybe_unused]] const auto* const environment = ::testing::AddGlobalTestEnvironment(new DesktopEnvironment);

}  // namespace
}  // namespace kelvora
