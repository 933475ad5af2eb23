#include <windowsx.h>

#include <cmath>
#include <utility>

#include "platform/pictureBox.h"
#include "platform/win32/formPeer.h"
#include "platform/win32/messagePump.h"
#include "platform/win32/nativePeer.h"

namespace kelvora {

namespace {

NativePeer* nativePeer(HWND window) {
  return dynamic_cast<NativePeer*>(InputTarget::find(static_cast<int>(GetWindowLongPtrW(window, GWLP_ID))));
}

}  // namespace

LRESULT CALLBACK FormPeer::procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message == WM_NCCREATE) {
    auto* peer = static_cast<FormPeer*>(reinterpret_cast<CREATESTRUCTW*>(second)->lpCreateParams);
    peer->window_ = window;
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(peer));
  }
  auto* peer = reinterpret_cast<FormPeer*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  return peer == nullptr ? DefWindowProcW(window, message, first, second) : peer->handle(message, first, second);
}

LRESULT FormPeer::handle(UINT message, WPARAM first, LPARAM second) {
  LRESULT result = 0;
  if (handleChild(message, first, second, result)) return result;
  if (handleMouse(message, first, second)) return 0;
  switch (message) {
    case WM_PAINT:
      paintWindow();
      return 0;
    case WM_NCPAINT:
    case WM_NCACTIVATE:
      result = DefWindowProcW(window_, message, first, second);
      paintMenuBar(*this);
      return result;
    case WM_ERASEBKGND:
      return 1;
    case WM_SIZE:
      if (first != SIZE_MINIMIZED) post({InputKind::Resized});
      repaintAll();
      return 0;
    case WM_MOVE:
      post({InputKind::Moved});
      return 0;
    case WM_CLOSE:
      post({InputKind::Closed});
      return 0;
    case WM_ACTIVATE:
      if (LOWORD(first) == WA_INACTIVE) break;
      post({InputKind::Activated});
      break;
    case WM_SETFOCUS:
      if (auto* peer = dynamic_cast<ControlPeer*>(InputTarget::find(keyTarget_)); peer && peer->window() != window_) {
        SetFocus(peer->window());
      }
      return 0;
    case WM_CAPTURECHANGED:
      // Also without a release, such as when a message box opens.
      captured_ = 0;
      return 0;
    case WM_SETCURSOR:
      if (LOWORD(second) != HTCLIENT || !hidePointer()) break;
      SetCursor(nullptr);
      return TRUE;
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN:
    case WM_CHAR:
      handleKey(message, first);
      if (message == WM_SYSKEYDOWN) break;
      return 0;
    case WM_NCLBUTTONDOWN:
      if (first == HTCAPTION) endWaitForDrag({GET_X_LPARAM(second), GET_Y_LPARAM(second)});
      break;
    case WM_ENTERMENULOOP:
    case WM_ENTERSIZEMOVE:
      systemLoopBegins();
      return 0;
    case WM_GETMINMAXINFO: {
      // By default, a window hardly exceeds the screen, so its frame takes room from the game in full screen.
      constexpr LONG unlimited = 32767;
      reinterpret_cast<MINMAXINFO*>(second)->ptMaxTrackSize = {unlimited, unlimited};
      return 0;
    }
    case WM_DPICHANGED: {
      const RECT& place = *reinterpret_cast<const RECT*>(second);
      // A dialog that is shown smaller stays so.
      const double screen = scaleAt(LOWORD(first));
      rescale(scale_ * screen / std::exchange(screenScale_, screen));
      SetWindowPos(window_, nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                   SWP_NOZORDER | SWP_NOACTIVATE);
      // The suggested size grows with the frame, too, and isn't exact.
      if (form_.design.border == Form::Border::Fixed) resizeClient(clientWidth(), clientHeight());
      return 0;
    }
    default:
      break;
  }
  return DefWindowProcW(window_, message, first, second);
}

bool FormPeer::handleChild(UINT message, WPARAM first, LPARAM second, LRESULT& result) {
  switch (message) {
    case WM_COMMAND: {
      if (second == 0) {
        if (const InputTarget* item = InputTarget::find(LOWORD(first))) item->post({InputKind::Click});
        return true;
      }
      NativePeer* peer = nativePeer(reinterpret_cast<HWND>(second));
      if (peer != nullptr) peer->command(HIWORD(first));
      return peer != nullptr;
    }
    case WM_NOTIFY: {
      const auto& header = *reinterpret_cast<const NMHDR*>(second);
      NativePeer* peer = nativePeer(header.hwndFrom);
      if (peer != nullptr) result = peer->notify(header);
      return peer != nullptr;
    }
    case WM_HSCROLL: {
      NativePeer* peer = nativePeer(reinterpret_cast<HWND>(second));
      if (peer != nullptr) peer->scrolled(LOWORD(first));
      return peer != nullptr;
    }
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORSTATIC: {
      NativePeer* peer = nativePeer(reinterpret_cast<HWND>(second));
      if (peer == nullptr) return false;
      result = reinterpret_cast<LRESULT>(peer->colours(reinterpret_cast<HDC>(first)));
      return true;
    }
    case WM_MEASUREITEM: {
      auto& item = *reinterpret_cast<MEASUREITEMSTRUCT*>(second);
      if (item.CtlType != ODT_MENU) return false;
      measureMenuItem(*this, item);
      result = TRUE;
      return true;
    }
    case WM_DRAWITEM: {
      const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(second);
      if (item.CtlType == ODT_MENU) {
        drawMenuItem(*this, item);
      } else if (NativePeer* peer = nativePeer(item.hwndItem)) {
        peer->draw(item);
      }
      result = TRUE;
      return true;
    }
    default:
      return false;
  }
}

bool FormPeer::handleMouse(UINT message, WPARAM first, LPARAM second) {
  const auto report = mouseReport(message);
  if (!report) return false;
  const int x = static_cast<int>(std::floor(GET_X_LPARAM(second) / scale_));
  const int y = static_cast<int>(std::floor(GET_Y_LPARAM(second) / scale_));
  auto* peer = captured_ == 0 ? at(form_, x, y) : dynamic_cast<ControlPeer*>(InputTarget::find(captured_));
  if (toolTip_) toolTip_->follow(peer, scale_, message, first, second);
  const bool isPress = report->kind == InputKind::MouseDown || report->kind == InputKind::DoubleClick;
  const bool isHeld = report->button != 0 || buttonBits(first) != 0;
  // The press was elsewhere, such as on a window that has closed since.
  if (captured_ == 0 && isHeld && !isPress) return true;
  if (isPress) {
    SetCapture(window_);
    captured_ = peer == nullptr ? id() : peer->id();
  } else if (report->kind == InputKind::MouseUp && buttonBits(first) == 0) {
    ReleaseCapture();
  }
  if (peer == nullptr) return true;
  const Box place = peer->box();
  Input input{report->kind, report->button, shiftBits(), x - place.left, y - place.top, place.contains(x, y) ? 1 : 0};
  if (isPress && peer->takesKeys()) focus(*peer);
  if (report->kind == InputKind::MouseMove) {
    if (input.inside == 0 && !peer->takesMovesOutside()) return true;
    input.first = buttonBits(first);
  }
  peer->post(input);
  return true;
}

/// After a press of the title at this place of the screen, Windows waits for half a second for a drag, and gives the
/// game no turns meanwhile. Any move of the mouse ends the wait.
void FormPeer::endWaitForDrag(POINT place) const {
  ScreenToClient(window_, &place);
  PostMessageW(window_, WM_MOUSEMOVE, 0, MAKELPARAM(place.x, place.y));
}

void FormPeer::handleKey(UINT message, WPARAM first) {
  if (first == VK_TAB && message != WM_SYSKEYDOWN) {
    if (message == WM_KEYDOWN) focusNext((shiftBits() & shiftBit) != 0);
    return;
  }
  if (const InputTarget* target = InputTarget::find(keyTarget_)) return postKey(*target, message, first);
  const bool isAnswer = first == VK_RETURN || first == VK_ESCAPE;
  if (message != WM_CHAR && isAnswer) postKey(*this, message, first);
}

bool FormPeer::hidePointer() const {
  constexpr int invisible = 99;
  POINT point{};
  GetCursorPos(&point);
  ScreenToClient(window_, &point);
  const ControlPeer* peer =
      at(form_, static_cast<int>(std::floor(point.x / scale_)), static_cast<int>(std::floor(point.y / scale_)));
  const auto* box = peer == nullptr ? nullptr : dynamic_cast<const PictureBox*>(&peer->control());
  return box != nullptr && box->MousePointer == invisible;
}

}  // namespace kelvora
