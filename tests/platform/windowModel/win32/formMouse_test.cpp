#include <string>

#include "platform/grid.h"
#include "platform/pictureBox.h"
#include "platform/widgets.h"
#include "platform/win32/nativePeer.h"
#include "tests/platform/windowModel/win32/formTest.h"

namespace kelvora {
namespace {

/// A picture of 100 by 100 pixels with a label of the same size to its right.
class FormMouse : public FormTest {
 protected:
  FormMouse() {
    picture_.MouseDown = [this](int, int, float, float) { events_ += "press "; };
    picture_.MouseMove = [this](int Button, int, float, float) { events_ += Button == 0 ? "move " : "drag "; };
    picture_.MouseUp = [this](int, int, float, float) { events_ += "release "; };
    label_.MouseUp = [this](int, int, float, float) { events_ += "label's release "; };
    label_.Click = [this] { events_ += "label's click "; };
    show();
  }

  PictureBox picture_{&form_, {0, 0, 1500, 1500}};
  Label label_{&form_, {1500, 0, 1500, 1500}, "Label", {}};
  std::string events_;
};

TEST_F(FormMouse, APressKeepsTheMouseUntilItsRelease) {
  mouse(WM_LBUTTONDOWN, 50, 50, MK_LBUTTON);
  mouse(WM_MOUSEMOVE, 150, 50, MK_LBUTTON);
  mouse(WM_LBUTTONUP, 150, 50);
  mouse(WM_LBUTTONDOWN, 150, 50, MK_LBUTTON);
  mouse(WM_LBUTTONUP, 150, 50);
  EXPECT_EQ(events_, "press release label's release label's click ");
}

TEST_F(FormMouse, APressIsForgottenWhenTheSystemTakesTheMouse) {
  mouse(WM_LBUTTONDOWN, 50, 50, MK_LBUTTON);
  // As a message box does.
  EnableWindow(windowOf(form_), FALSE);
  EnableWindow(windowOf(form_), TRUE);
  mouse(WM_LBUTTONDOWN, 150, 50, MK_LBUTTON);
  mouse(WM_LBUTTONUP, 150, 50);
  EXPECT_EQ(events_, "press label's release label's click ");
}

TEST_F(FormMouse, AReleaseWithoutItsPressIsNoClick) {
  mouse(WM_LBUTTONUP, 150, 50);
  EXPECT_EQ(events_, "");
}

TEST_F(FormMouse, ADragFromElsewhereMovesOverNoControl) {
  mouse(WM_MOUSEMOVE, 50, 50, MK_LBUTTON);
  EXPECT_EQ(events_, "");
  mouse(WM_MOUSEMOVE, 50, 50);
  EXPECT_EQ(events_, "move ");
}

TEST_F(FormMouse, APressBesideTheControlsReachesNone) {
  mouse(WM_LBUTTONDOWN, 50, 300, MK_LBUTTON);
  mouse(WM_MOUSEMOVE, 50, 50, MK_LBUTTON);
  mouse(WM_LBUTTONUP, 150, 50);
  EXPECT_EQ(events_, "");
  mouse(WM_MOUSEMOVE, 50, 50);
  EXPECT_EQ(events_, "move ");
}

TEST_F(FormMouse, TheButtonsAreToldApart) {
  std::string told;
  picture_.MouseDown = [&](int Button, int, float, float) { told += "press " + std::to_string(Button) + " "; };
  picture_.MouseMove = [&](int Button, int, float, float) { told += "move " + std::to_string(Button) + " "; };
  picture_.MouseUp = [&](int Button, int, float, float) { told += "release " + std::to_string(Button) + " "; };
  mouse(WM_LBUTTONDOWN, 50, 50, MK_LBUTTON);
  mouse(WM_RBUTTONDOWN, 50, 50, MK_LBUTTON | MK_RBUTTON);
  mouse(WM_MOUSEMOVE, 60, 50, MK_LBUTTON | MK_RBUTTON);
  mouse(WM_RBUTTONUP, 60, 50, MK_LBUTTON);
  mouse(WM_MOUSEMOVE, 50, 50, MK_LBUTTON);
  // The picture keeps the mouse while any button is held.
  mouse(WM_LBUTTONUP, 150, 50);
  EXPECT_EQ(told, "press 1 press 2 move 3 release 2 move 1 release 1 ");
}

TEST_F(FormMouse, TheSecondPressOfADoubleClickIsAPress) {
  for (const UINT message : {UINT{WM_RBUTTONDOWN}, UINT{WM_RBUTTONUP}, UINT{WM_RBUTTONDBLCLK}, UINT{WM_RBUTTONUP}}) {
    mouse(message, 50, 50, message == WM_RBUTTONUP ? 0 : MK_RBUTTON);
  }
  EXPECT_EQ(events_, "press release press release ");
}

TEST_F(FormMouse, TheRightButtonClicksNoLabel) {
  mouse(WM_RBUTTONDOWN, 150, 50, MK_RBUTTON);
  mouse(WM_RBUTTONUP, 150, 50);
  EXPECT_EQ(events_, "label's release ");
}

class GridMouse : public FormTest {
 protected:
  Grid grid_{&form_, {0, 0, 3000, 3000}};
};

TEST_F(GridMouse, ADoubleClickOnTheHeadingsCounts) {
  grid_.FixedCols = 0;
  grid_.AddItem("first\tsecond");
  int doubleClicks = 0;
  grid_.DblClick = [&] { ++doubleClicks; };
  show();
  const HWND headings = ListView_GetHeader(windowOf(grid_));
  ASSERT_TRUE(IsWindowVisible(headings));
  constexpr int inFirst = 20;
  constexpr int beyondLast = 180;
  for (const int x : {inFirst, beyondLast}) post(headings, WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(x, 5));
  EXPECT_EQ(doubleClicks, 2);
}

}  // namespace
}  // namespace kelvora
