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

/// Tells a form that its screen now has this many dots per inch, and suggests a place and a size, as the system does.
void tellDotsPerInch(const Form& form, int dots) {
  RECT suggested{0, 0, 333, 333};
  SendMessageW(windowOf(form), WM_DPICHANGED, static_cast<WPARAM>(MAKELONG(dots, dots)),
               reinterpret_cast<LPARAM>(&suggested));
  serveAll();
}

SIZE clientOf(const Form& form) {
  RECT client{};
  GetClientRect(windowOf(form), &client);
  return {client.right, client.bottom};
}

TEST_F(FormWindows, ADialogIsExactlyAsLargeAsItsScreenIsScaled) {
  Form dialog("Dialog", small);
  dialog.Show();
  tellDotsPerInch(dialog, 2 * USER_DEFAULT_SCREEN_DPI);
  EXPECT_EQ(clientOf(dialog).cx, 2 * 200);
  EXPECT_EQ(clientOf(dialog).cy, 2 * 200);
  EXPECT_EQ(dialog.Width, 3000 + Form::frameWidth) << "to the game, the dialog hasn't changed";
}

TEST_F(FormWindows, AShrunkDialogShowsAllOfItselfOnAnotherScreen) {
  Form tall("Tall", {.clientWidth = 3000, .clientHeight = 2 * 1080 * twipsPerPixel, .systemColours = true});
  tall.Show();
  const SIZE before = clientOf(tall);
  ASSERT_LT(before.cy, 1080);
  tellDotsPerInch(tall, 2 * USER_DEFAULT_SCREEN_DPI);
  EXPECT_NEAR(clientOf(tall).cx, 2 * before.cx, 1);
  EXPECT_NEAR(clientOf(tall).cy, 2 * before.cy, 1);
  tellDotsPerInch(tall, USER_DEFAULT_SCREEN_DPI);
  EXPECT_EQ(clientOf(tall).cx, before.cx);
  EXPECT_EQ(clientOf(tall).cy, before.cy);
}

}  // namespace
}  // namespace kelvora
