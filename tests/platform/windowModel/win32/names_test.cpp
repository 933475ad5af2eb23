#include <oleacc.h>

#include <string>

#include "platform/menuItem.h"
#include "platform/widgets.h"
#include "tests/platform/windowModel/win32/formTest.h"

namespace kelvora {
namespace {

/// Buttons, check boxes and menus are painted by the game. Screen readers look for their names in other places.
class Names : public FormTest {
 protected:
  static std::wstring nameOf(const Control& control) {
    wchar_t text[64] = {};
    GetWindowTextW(windowOf(control), text, 64);
    return text;
  }

  static std::wstring nameOf(HMENU menu, UINT position) {
    MENUITEMINFOW info{};
    info.cbSize = sizeof info;
    info.fMask = MIIM_DATA;
    if (GetMenuItemInfoW(menu, position, TRUE, &info) == FALSE) return L"(no item)";
    const auto* name = reinterpret_cast<const MSAAMENUINFO*>(info.dwItemData);
    if (name->dwMSAASignature != static_cast<DWORD>(MSAA_MENU_SIG)) return L"(no name)";
    return {name->pszWText, name->cchWText};
  }
};

TEST_F(Names, OfButtonsAndCheckBoxesAreTheirCaptions) {
  Button button(&form_, {0, 0, 2000, 300}, "Connect");
  CheckBox box(&form_, {0, 600, 2000, 300}, "Hide full games", 0);
  show();
  EXPECT_EQ(nameOf(button), L"Connect");
  EXPECT_EQ(nameOf(box), L"Hide full games");
  button.Caption = "Cancel";
  EXPECT_EQ(nameOf(button), L"Cancel");
}

TEST_F(Names, OfMenusAreTheirCaptions) {
  MenuItem file(&form_, "File");
  MenuItem exit(&file, "Exit");
  show();
  const HMENU bar = GetMenu(windowOf(form_));
  EXPECT_EQ(nameOf(bar, 0), L"File");
  EXPECT_EQ(nameOf(GetSubMenu(bar, 0), 0), L"Exit");
  exit.Caption = "Leave";
  EXPECT_EQ(nameOf(GetSubMenu(bar, 0), 0), L"Leave");
}

TEST_F(Names, OfMenusAreToldWithTheirTicks) {
  MenuItem settings(&form_, "Settings");
  MenuItem never(&settings, "Never");
  never.Checked = true;
  show();
  const HMENU list = GetSubMenu(GetMenu(windowOf(form_)), 0);
  const auto isChecked = [&] { return (GetMenuState(list, 0, MF_BYPOSITION) & MF_CHECKED) != 0; };
  EXPECT_TRUE(isChecked());
  never.Checked = false;
  EXPECT_FALSE(isChecked());
}

}  // namespace
}  // namespace kelvora
