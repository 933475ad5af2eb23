#include <cmath>
#include <string>

#include "platform/menuItem.h"
#include "platform/win32/formPeer.h"
#include "platform/win32/gdiFonts.h"
#include "platform/win32/wideText.h"
#include "platform/windowing/handlerCall.h"
// Needs <windows.h>.
#include <oleacc.h>

namespace kelvora {

namespace {

constexpr int markWidth = 20;  ///< pixels left of an entry, for its check mark
constexpr int arrowWidth = 16;
constexpr int rowMargin = 6;
constexpr const wchar_t* separator = L"-";

class MenuPeer : public Peer, public InputTarget {
 public:
  /// What an item's data points to.
  struct Data {
    MSAAMENUINFO name;  ///< where screen readers look for it
    int id;
  };

  MenuPeer(MenuItem& item, FormPeer& form, HMENU menu, HMENU submenu)
      : item_(item), form_(form), menu_(menu), submenu_(submenu) {
    MENUITEMINFOW info = state();
    info.fMask |= MIIM_ID | MIIM_FTYPE | MIIM_DATA | (submenu == nullptr ? 0U : MIIM_SUBMENU);
    info.fType = MFT_OWNERDRAW | (caption() == separator ? MFT_SEPARATOR : 0U);
    info.wID = static_cast<UINT>(id());
    info.hSubMenu = submenu;
    info.dwItemData = reinterpret_cast<ULONG_PTR>(&data_);
    renewName();
    InsertMenuItemW(menu, static_cast<UINT>(GetMenuItemCount(menu)), TRUE, &info);
  }

  ~MenuPeer() override {
    MENUITEMINFOW info{};
    info.cbSize = sizeof info;
    info.fMask = MIIM_DATA;
    SetMenuItemInfoW(menu_, static_cast<UINT>(id()), FALSE, &info);
  }

  MenuPeer(const MenuPeer&) = delete;
  MenuPeer& operator=(const MenuPeer&) = delete;

  void changed(PropertyId) override {
    renewName();
    const MENUITEMINFOW info = state();
    SetMenuItemInfoW(menu_, static_cast<UINT>(id()), FALSE, &info);
    if (isInBar()) DrawMenuBar(form_.window());
  }

  void take(const Input& input) override {
    if (input.kind == InputKind::Click) raiseEvent(item_, item_.Click);
  }

  std::wstring caption() const { return toWide(item_.Caption.get()); }
  bool isChecked() const { return item_.Checked; }
  bool isEnabled() const { return item_.Enabled; }
  bool isInBar() const { return dynamic_cast<Form*>(item_.container()) != nullptr; }
  bool hasSubmenu() const { return submenu_ != nullptr; }

 private:
  void renewName() {
    name_ = caption();
    data_.name = {static_cast<DWORD>(MSAA_MENU_SIG), static_cast<DWORD>(name_.size()), name_.data()};
  }

  MENUITEMINFOW state() const {
    MENUITEMINFOW info{};
    info.cbSize = sizeof info;
    info.fMask = MIIM_STATE;
    info.fState = (item_.Checked ? MFS_CHECKED : 0U) | (item_.Enabled ? 0U : MFS_DISABLED);
    return info;
  }

  MenuItem& item_;
  FormPeer& form_;
  HMENU menu_;
  HMENU submenu_;
  std::wstring name_;
  Data data_{{}, id()};
};

/// The item's peer; null if it has gone.
MenuPeer* menuPeer(ULONG_PTR data) {
  const auto* found = reinterpret_cast<const MenuPeer::Data*>(data);
  return found == nullptr ? nullptr : dynamic_cast<MenuPeer*>(InputTarget::find(found->id));
}

bool addItems(Control& container, FormPeer& form, HMENU menu) {
  bool isAny = false;
  for (Control* child : container.children()) {
    auto* item = dynamic_cast<MenuItem*>(child);
    if (item == nullptr) continue;
    isAny = true;
    const HMENU submenu = item->children().empty() ? nullptr : CreatePopupMenu();
    item->peer = std::make_unique<MenuPeer>(*item, form, menu, submenu);
    addItems(*item, form, submenu);
  }
  return isAny;
}

Colour groundOf(const FormPeer& form) {
  return form.form().design.systemColours ? form.looks().ground : form.looks().menu;
}

}  // namespace

void realizeMenu(Form& form, FormPeer& peer) {
  const HMENU bar = CreateMenu();
  if (!addItems(form, peer, bar)) {
    DestroyMenu(bar);
    return;
  }
  // Lives as long as the menu, which the window destroys.
  const HBRUSH ground = CreateSolidBrush(toColorRef(groundOf(peer)));
  MENUINFO info{};
  info.cbSize = sizeof info;
  info.fMask = MIM_BACKGROUND | MIM_APPLYTOSUBMENUS;
  info.hbrBack = ground;
  SetMenuInfo(bar, &info);
  SetMenu(peer.window(), bar);
}

void paintMenuBar(const FormPeer& form) {
  const HWND window = form.window();
  const HMENU menu = GetMenu(window);
  RECT last{};
  if (menu == nullptr || GetMenuItemRect(window, menu, static_cast<UINT>(GetMenuItemCount(menu) - 1), &last) == 0)
    return;
  RECT outer{};
  GetWindowRect(window, &outer);
  RECT client{};
  GetClientRect(window, &client);
  POINT corner{};
  ClientToScreen(window, &corner);
  OffsetRect(&client, corner.x - outer.left, corner.y - outer.top);
  const LONG top = client.top - GetSystemMetricsForDpi(SM_CYMENU, GetDpiForWindow(window));
  const RECT parts[] = {{client.left, top, client.right, top + 1},
                        {last.right - outer.left, top, client.right, client.top},
                        {client.left, client.top - 1, client.right, client.top}};
  const HDC dc = GetWindowDC(window);
  SetDCBrushColor(dc, toColorRef(groundOf(form)));
  for (const RECT& part : parts) FillRect(dc, &part, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
  ReleaseDC(window, dc);
}

void measureMenuItem(const FormPeer& form, MEASUREITEMSTRUCT& item) {
  const MenuPeer* peer = menuPeer(item.itemData);
  if (peer == nullptr) return;
  const double scale = form.scale();
  const std::wstring text = peer->caption();
  if (text == separator) {
    item.itemHeight = static_cast<UINT>(std::lround(rowMargin * scale));
    return;
  }
  const FontMeasure measure(gdiFont(FontSpec{}, scale));
  const int beside = peer->isInBar() ? 0 : markWidth + arrowWidth;
  item.itemWidth = static_cast<UINT>(measure.width(text.data(), text.size()) + std::lround(beside * scale));
  item.itemHeight = static_cast<UINT>(measure.lineHeight() + std::lround(rowMargin * scale));
}

void drawMenuItem(const FormPeer& form, const DRAWITEMSTRUCT& item) {
  const MenuPeer* peer = menuPeer(item.itemData);
  if (peer == nullptr) return;
  const Looks& looks = form.looks();
  const Painter painter(item.hDC, form.scale());
  const bool isChosen = (item.itemState & (ODS_SELECTED | ODS_HOTLIGHT)) != 0 && peer->isEnabled();
  const auto inPixels = [&](LONG value) {
    return static_cast<int>(std::lround(static_cast<double>(value) / form.scale()));
  };
  const Box place{inPixels(item.rcItem.left), inPixels(item.rcItem.top), inPixels(item.rcItem.right - item.rcItem.left),
                  inPixels(item.rcItem.bottom - item.rcItem.top)};
  SetDCBrushColor(item.hDC, toColorRef(isChosen ? looks.chosen : groundOf(form)));
  FillRect(item.hDC, &item.rcItem, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
  const std::wstring text = peer->caption();
  if (text == separator) {
    painter.fill({place.left, place.top + place.height / 2, place.width, 1}, looks.line);
  } else {
    constexpr UINT middle = DT_VCENTER;
    constexpr wchar_t arrow[] = L"\u203A";
    const Colour ink = peer->isEnabled() ? looks.text : looks.quiet;
    const int left = peer->isInBar() ? 0 : markWidth;
    const Box room{place.left + left, place.top, place.width - left, place.height};
    painter.text(room, text, FontSpec{}, ink, middle | (peer->isInBar() ? DT_CENTER : DT_LEFT));
    // Drawn, because many fonts lack the letter.
    constexpr int markSide = 7;
    if (peer->isChecked()) {
      painter.tick(
          {place.left + (markWidth - markSide) / 2, place.top + (place.height - markSide) / 2, markSide, markSide},
          ink);
    }
    if (peer->hasSubmenu() && !peer->isInBar()) {
      painter.text({place.left + place.width - arrowWidth, place.top, arrowWidth, place.height}, arrow, FontSpec{}, ink,
                   middle | DT_CENTER);
    }
  }
  // The system would draw its own arrow, dark on dark.
  ExcludeClipRect(item.hDC, item.rcItem.left, item.rcItem.top, item.rcItem.right, item.rcItem.bottom);
}

}  // namespace kelvora
