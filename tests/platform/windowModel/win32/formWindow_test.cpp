#include <optional>

#include "platform/widgets.h"
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

}  // namespace
}  // namespace kelvora
