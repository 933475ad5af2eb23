#include "platform/pictureBox.h"
#include "platform/widgets.h"
#include "tests/platform/windowModel/win32/formTest.h"

namespace kelvora {
namespace {

/// A picture of 100 by 100 pixels; two text boxes and a slider, in this tab order.
class FormKeys : public FormTest {
 protected:
  FormKeys() {
    name_.TabIndex = 0;
    address_.TabIndex = 1;
    slider_.TabIndex = 2;
    show();
  }

  PictureBox picture_{&form_, {0, 0, 1500, 1500}};
  TextBox name_{&form_, {0, 1500, 3000, 300}, "Ann"};
  TextBox address_{&form_, {0, 1800, 3000, 300}, "192.0.2.7"};
  Slider slider_{&form_, {0, 2100, 3000, 600}, 0, 4};
};

TEST_F(FormKeys, TabSelectsTheNextText) {
  post(windowOf(name_), WM_KEYDOWN, VK_TAB);
  EXPECT_EQ(GetFocus(), windowOf(address_));
  post(windowOf(address_), WM_CHAR, 'x');
  EXPECT_EQ(address_.Text.get(), "x");
  EXPECT_EQ(name_.Text.get(), "Ann");
}

TEST_F(FormKeys, TabMovesFromAPictureToTheFirstText) {
  int keys = 0;
  picture_.KeyDown = [&](int, int) { ++keys; };
  picture_.KeyPress = [&](int) { ++keys; };
  mouse(WM_LBUTTONDOWN, 50, 50, MK_LBUTTON);
  mouse(WM_LBUTTONUP, 50, 50);
  ASSERT_EQ(GetFocus(), windowOf(form_));
  post(windowOf(form_), WM_KEYDOWN, 'A');
  const int before = keys;
  EXPECT_GT(before, 0);
  post(windowOf(form_), WM_KEYDOWN, VK_TAB);
  EXPECT_EQ(keys, before);
  EXPECT_EQ(GetFocus(), windowOf(name_));
}

TEST_F(FormKeys, ControlAndBackspaceDeleteTheWordBeforeTheCaret) {
  constexpr WPARAM controlBackspace = 0x7F;
  name_.Text = "one two  three";
  name_.SelStart = 9;  // before "three"
  post(windowOf(name_), WM_CHAR, controlBackspace);
  EXPECT_EQ(name_.Text.get(), "one three");
  post(windowOf(name_), WM_CHAR, controlBackspace);
  EXPECT_EQ(name_.Text.get(), "three");
  post(windowOf(name_), WM_CHAR, controlBackspace);
  EXPECT_EQ(name_.Text.get(), "three");
}

TEST_F(FormKeys, PastedAccentsJoinTheirLetters) {
  SendMessageW(windowOf(name_), EM_SETSEL, 0, 0);
  SendMessageW(windowOf(name_), EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(L"Rene\u0301e "));
  serveAll();
  EXPECT_EQ(name_.Text.get(),
            "Ren\xE9"
            "e Ann");
  EXPECT_EQ(name_.SelStart, 6);
  wchar_t shown[16] = {};
  GetWindowTextW(windowOf(name_), shown, 16);
  EXPECT_STREQ(shown, L"Ren\u00E9e Ann");
}

TEST_F(FormKeys, UpMovesASliderToTheRight) {
  slider_.Value = 2;
  post(windowOf(slider_), WM_KEYDOWN, VK_UP);
  EXPECT_EQ(slider_.Value, 3);
  post(windowOf(slider_), WM_KEYDOWN, VK_DOWN);
  post(windowOf(slider_), WM_KEYDOWN, VK_LEFT);
  EXPECT_EQ(slider_.Value, 1);
  post(windowOf(slider_), WM_KEYDOWN, VK_RIGHT);
  EXPECT_EQ(slider_.Value, 2);
}

}  // namespace
}  // namespace kelvora
