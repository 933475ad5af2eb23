#include <optional>

#include "platform/widgets.h"
#include "raster/twips.h"
#include "tests/platform/windowModel/win32/formTest.h"

namespace kelvora {
namespace {

constexpr Form::Design small{.clientWidth = 3000, .clientHeight = 3000, .systemColours = true};

class FormWindows : public FormTest {
 protected:
  FormWindows() { show(); }
};

TEST_F(FormWindows, ABoxGivesTheKeyboardBackToTheDialogBelow) {
  Form dialog("Dialog", small);
  TextBox name(&dialog, {0, 0, 2000, 300}, "Ann");
  name.TabIndex = 0;
  dialog.Show();
  std::optional<Form> box(std::in_place, "Box", small);
  box->Show(Form::Modality::Modal);
  ASSERT_EQ(GetActiveWindow(), windowOf(*box));
  box->Hide();
  serveAll();
  EXPECT_EQ(GetActiveWindow(), windowOf(dialog));
  EXPECT_EQ(GetFocus(), windowOf(name));
}

TEST_F(FormWindows, ABoxGivesTheKeyboardBackToTheMainWindowBelow) {
  Form dialog("Dialog", small);
  dialog.Show();
  SetForegroundWindow(windowOf(form_));
  Form box("Box", small);
  box.Show(Form::Modality::Modal);
  box.Hide();
  serveAll();
  EXPECT_EQ(GetActiveWindow(), windowOf(form_));
}

TEST_F(FormWindows, AHiddenBoxLeavesTheKeyboardToTheBoxAboveIt) {
  Form lower("Lower", small);
  Form upper("Upper", small);
  lower.Show(Form::Modality::Modal);
  upper.Show(Form::Modality::Modal);
  lower.Hide();
  serveAll();
  EXPECT_EQ(GetActiveWindow(), windowOf(upper));
  upper.Hide();
  serveAll();
  EXPECT_EQ(GetActiveWindow(), windowOf(form_));
}

TEST_F(FormWindows, AFormThatIsShrunkToTheScreenStandsWhereTheGamePutsIt) {
  constexpr float twiceTheScreen = 2 * 1080 * twipsPerPixel;
  Form tall("Tall", {.clientWidth = 3000, .clientHeight = twiceTheScreen, .systemColours = true});
  tall.Left = 300 * twipsPerPixel;
  tall.Show();
  ASSERT_LT(dynamic_cast<FormPeer&>(*tall.peer).scale(), screenScale(windowOf(tall)));
  const auto left = [&] {
    RECT outer{};
    GetWindowRect(windowOf(tall), &outer);
    return outer.left / screenScale(windowOf(tall));
  };
  EXPECT_EQ(left(), 300);
  tall.Left = 200 * twipsPerPixel;
  EXPECT_EQ(left(), 200);
  SetWindowPos(windowOf(tall), nullptr, static_cast<int>(100 * screenScale(windowOf(tall))), 0, 0, 0,
               SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
  serveAll();
  EXPECT_FLOAT_EQ(tall.Left, 100 * twipsPerPixel);
}

}  // namespace
}  // namespace kelvora
