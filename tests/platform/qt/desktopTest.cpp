#include "tests/platform/qt/desktopTest.h"

#include <memory>

#include "platform/qt/qtDesktop.h"
#include "tests/platform/qt/offscreenToolkit.h"

namespace kelvora {
namespace {

/// The desktop without a screen, for all tests of this program.
class DesktopEnvironment : public ::testing::Environment {
 public:
  void SetUp() override {
    toolkit_ = std::make_unique<OffscreenToolkit>();
    desktop_ = std::make_unique<QtDesktop>("NoSound");
    installBackend(desktop_.get());
  }
  void TearDown() override {
    installBackend(nullptr);
    desktop_.reset();
    toolkit_.reset();
  }

 private:
  std::unique_ptr<OffscreenToolkit> toolkit_;
  std::unique_ptr<QtDesktop> desktop_;
};

[[maybe_unused]] const auto* const environment = ::testing::AddGlobalTestEnvironment(new DesktopEnvironment);

}  // namespace
}  // namespace kelvora
