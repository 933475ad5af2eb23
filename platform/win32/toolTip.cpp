#include "platform/win32/toolTip.h"

#include <commctrl.h>
#include <uxtheme.h>

#include "platform/win32/wideText.h"
#include "platform/windowing/looks.h"

namespace kelvora {

namespace {

TTTOOLINFOW toolOf(HWND form) {
  TTTOOLINFOW tool{};
  tool.cbSize = sizeof tool;
  tool.hwnd = form;
  return tool;
}

}  // namespace

void ToolTip::create() {
  tip_ = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP, 0, 0, 0, 0,
                         form_, nullptr, GetModuleHandleW(nullptr), nullptr);
  // Themed tips have the theme's colours.
  SetWindowTheme(tip_, L"", L"");
  SendMessageW(tip_, TTM_SETTIPBKCOLOR, toColorRef(dialogLooks.ground), 0);
  SendMessageW(tip_, TTM_SETTIPTEXTCOLOR, toColorRef(dialogLooks.text), 0);
  TTTOOLINFOW tool = toolOf(form_);
  SendMessageW(tip_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

void ToolTip::follow(const ControlPeer* under, double scale, UINT message, WPARAM first, LPARAM second) {
  const bool hasTip = under != nullptr && !under->control().ToolTipText.get().empty();
  if (!hasTip && tip_ == nullptr) return;
  if (tip_ == nullptr) create();
  if (const int id = hasTip ? under->id() : 0; id != shown_) {
    shown_ = id;
    SendMessageW(tip_, TTM_POP, 0, 0);
    TTTOOLINFOW tool = toolOf(form_);
    std::wstring text = hasTip ? toWide(under->control().ToolTipText.get()) : L"";
    if (hasTip) tool.rect = deviceRect(under->box(), scale);
    tool.lpszText = text.data();
    SendMessageW(tip_, TTM_NEWTOOLRECTW, 0, reinterpret_cast<LPARAM>(&tool));
    SendMessageW(tip_, TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
  }
  MSG relayed{form_, message, first, second, 0, {}};
  SendMessageW(tip_, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&relayed));
}

}  // namespace kelvora
