#include "platform/win32/nativePeer.h"

#include "platform/win32/formPeer.h"
#include "platform/win32/gdiFonts.h"
#include "platform/win32/messagePump.h"

namespace kelvora {

NativePeer::NativePeer(Control& control, FormPeer& form, const wchar_t* kind, DWORD style, const FontSpec& font)
    : ControlPeer(control, form),
      window_(CreateWindowExW(0, kind, L"", style | WS_CHILD | WS_CLIPSIBLINGS, 0, 0, 0, 0, form.window(),
                              reinterpret_cast<HMENU>(static_cast<INT_PTR>(id())), GetModuleHandleW(nullptr), nullptr)),
      font_(font) {
  SetWindowSubclass(window_, &NativePeer::procedure, 0, reinterpret_cast<DWORD_PTR>(this));
}

NativePeer::~NativePeer() {
  RemoveWindowSubclass(window_, &NativePeer::procedure, 0);
  DestroyWindow(window_);
}

void NativePeer::follow() {
  const RECT place = deviceRect(windowBox(box()), form().scale());
  SendMessageW(window_, WM_SETFONT, reinterpret_cast<WPARAM>(gdiFont(font_, form().scale())), FALSE);
  SetWindowPos(window_, nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
               SWP_NOZORDER | SWP_NOACTIVATE | (isShown() ? SWP_SHOWWINDOW : SWP_HIDEWINDOW));
}

void NativePeer::takeFocus() {
  if (form().isShown()) form().takeFocus();
  form().focus(*this);
}

HBRUSH NativePeer::colours(HDC dc) const {
  const Looks& looks = form().looks();
  SetTextColor(dc, toColorRef(looks.text));
  SetBkColor(dc, toColorRef(looks.ground));
  SetDCBrushColor(dc, toColorRef(looks.ground));
  return static_cast<HBRUSH>(GetStockObject(DC_BRUSH));
}

void NativePeer::take(const Input& input) {
  const bool isEnter = input.first == VK_RETURN;
  const bool isAnswer = isEnter || input.first == VK_ESCAPE;
  if (input.kind == InputKind::KeyDown && isAnswer && answered_.takeDown(control(), isEnter)) return;
  if (input.kind == InputKind::KeyPress && isAnswer && answered_.takeCharacter()) return;
  ControlPeer::take(input);
}

bool NativePeer::handleKey(UINT message, WPARAM first) {
  if (message == WM_KEYDOWN && first == VK_TAB) {
    form().focusNext((shiftBits() & shiftBit) != 0);
    return true;
  }
  postKey(*this, message, first);
  // With Alt, every key is also the system's, such as Alt+F4. Without Alt, it would beep for these three.
  return message != WM_SYSKEYDOWN && (first == VK_TAB || first == VK_RETURN || first == VK_ESCAPE);
}

LRESULT CALLBACK NativePeer::procedure(HWND window, UINT message, WPARAM first, LPARAM second, UINT_PTR,
                                       DWORD_PTR self) {
  auto* peer = reinterpret_cast<NativePeer*>(self);
  LRESULT result = 0;
  if (peer->handle(message, first, second, result)) return result;
  switch (message) {
    case WM_GETDLGCODE:
      return DLGC_WANTALLKEYS;
    case WM_SETFOCUS:
      peer->form().focus(*peer);
      break;
    case WM_CONTEXTMENU:
    case WM_NCLBUTTONDOWN:
    case WM_LBUTTONDOWN:
    case WM_RBUTTONDOWN:
      // A text box's menu, a list's scroll bar, and a list that waits for a drag run loops of the system's.
      systemLoopBegins();
      break;
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN:
    case WM_CHAR:
      if (peer->handleKey(message, first)) return 0;
      break;
    default:
      break;
  }
  return DefSubclassProc(window, message, first, second);
}

}  // namespace kelvora
