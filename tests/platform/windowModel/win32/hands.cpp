#include "tests/platform/windowModel/hands.h"

#include <utility>

#include "frontend/frmMain.h"
#include "platform/menuItem.h"
#include "platform/widgets.h"
#include "platform/win32/eventQueue.h"
#include "platform/win32/formPeer.h"
#include "platform/win32/messageWindow.h"
#include "platform/windowing/polledTimers.h"

namespace kelvora::hands {

namespace {

HWND handleOf(Window window) { return static_cast<HWND>(window); }

/// The form of one of the game's windows, or null for another window.
Form* formOf(HWND window) {
  wchar_t kind[32] = {};
  GetClassNameW(window, kind, 32);
  if (std::wstring(kind) != L"KelvoraForm") return nullptr;
  auto* peer = reinterpret_cast<FormPeer*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  return peer == nullptr ? nullptr : const_cast<Form*>(&peer->form());
}

/// The visible windows of the game, the topmost first.
std::vector<HWND> shownWindows() {
  std::vector<HWND> windows;
  const auto add = [](HWND window, LPARAM list) -> BOOL {
    if (IsWindowVisible(window) != FALSE && formOf(window) != nullptr) {
      reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
    }
    return TRUE;
  };
  EnumThreadWindows(GetCurrentThreadId(), add, reinterpret_cast<LPARAM>(&windows));
  return windows;
}

/// The form that a control is on.
Form& formOf(Control& control) { return dynamic_cast<Form&>(control.root()); }

void post(HWND window, std::initializer_list<UINT> messages, int x, int y) {
  for (const UINT message : messages) {
    PostMessageW(window, message, message == WM_LBUTTONUP ? 0 : MK_LBUTTON, MAKELPARAM(x, y));
  }
}

/// The system passes no input to disabled windows.
bool takesInput(HWND window) {
  return IsWindowVisible(window) != FALSE && IsWindowEnabled(window) != FALSE && IsIconic(window) == FALSE;
}

/// The control's own window, if the user can reach it. Otherwise null.
HWND reachable(Control& control) {
  const ControlPeer* peer = peerOf(control);
  if (peer == nullptr || !peer->isShown() || !takesInput(handleOf(windowOf(formOf(control))))) return nullptr;
  const HWND own = peer->window();
  return own != nullptr && takesInput(own) ? own : nullptr;
}

}  // namespace

bool isBoxVisible() {
  for (const HWND window : shownWindows()) {
    if (isBox(window)) return true;
  }
  return false;
}

/// The topmost one.
Window newestModal() {
  for (const HWND window : shownWindows()) {
    if (formOf(window)->modality() == Form::Modality::Modal) return window;
  }
  return nullptr;
}

bool isBox(Window window) { return dynamic_cast<MessageWindow*>(formOf(handleOf(window))) != nullptr; }

Window windowOf(Form& form) { return dynamic_cast<FormPeer&>(*form.peer).window(); }

void click(Control& control) {
  Form& form = formOf(control);
  const auto window = handleOf(windowOf(form));
  if (const HWND own = reachable(control); own != nullptr && own != window) {
    constexpr int inside = 4;
    return post(own, {WM_LBUTTONDOWN, WM_LBUTTONUP}, inside, inside);
  }
  const ControlPeer* peer = peerOf(control);
  if (peer == nullptr || !peer->isShown() || !takesInput(window)) return;
  const Box place = peer->box();
  const double scale = dynamic_cast<FormPeer&>(*form.peer).scale();
  post(window, {WM_LBUTTONDOWN, WM_LBUTTONUP}, static_cast<int>((place.left + place.width / 2) * scale),
       static_cast<int>((place.top + place.height / 2) * scale));
}

void doubleClick(Grid& grid) {
  constexpr int firstRow = 27;  // below the headings
  if (const HWND list = reachable(grid)) {
    post(list, {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP}, firstRow, firstRow);
  }
}

void choose(const std::string& menu, const std::string& item) {
  const auto window = handleOf(windowOf(*frmMain));
  if (!takesInput(window)) return;
  for (Control* title : frmMain->children()) {
    auto* const list = dynamic_cast<MenuItem*>(title);
    if (list == nullptr || list->Caption.get() != menu) continue;
    for (Control* child : list->children()) {
      auto* const entry = dynamic_cast<MenuItem*>(child);
      if (entry == nullptr || entry->Caption.get() != item || !entry->Enabled) continue;
      const auto id = static_cast<WPARAM>(dynamic_cast<InputTarget&>(*entry->peer).id());
      PostMessageW(window, WM_COMMAND, id, 0);
    }
  }
}

void press(Key key) {
  const HWND focus = GetFocus();
  if (focus == nullptr || !takesInput(GetAncestor(focus, GA_ROOT))) return;
  const WPARAM code = key == Key::Enter ? VK_RETURN : VK_ESCAPE;
  PostMessageW(focus, WM_KEYDOWN, code, 1);
  PostMessageW(focus, WM_KEYUP, code, 1);
}

void replaceText(Control& box, const std::string& text) {
  const HWND own = reachable(box);
  if (own == nullptr) return;
  SetFocus(own);
  SendMessageW(own, EM_SETSEL, 0, -1);
  PostMessageW(own, WM_CHAR, VK_BACK, 1);
  for (const char letter : text) PostMessageW(own, WM_CHAR, static_cast<WPARAM>(letter), 1);
}

void activate(Window window) {
  if (takesInput(handleOf(window))) SetForegroundWindow(handleOf(window));
}

void close(Window window) {
  if (takesInput(handleOf(window))) PostMessageW(handleOf(window), WM_CLOSE, 0, 0);
}

void answer(Window box) {
  for (Control* child : formOf(handleOf(box))->children()) {
    if (dynamic_cast<Button*>(child) != nullptr) click(*child);
  }
}

bool takesClicks(Window window) { return takesInput(handleOf(window)); }

bool takesKeys(Window window) {
  const HWND wanted = handleOf(window);
  if (!takesInput(wanted)) return false;
  const HWND before = GetActiveWindow();
  SetForegroundWindow(wanted);
  const HWND focus = GetFocus();
  const bool arrives = focus != nullptr && GetAncestor(focus, GA_ROOT) == wanted && takesInput(focus);
  if (before != nullptr && IsWindowVisible(before) != FALSE) SetForegroundWindow(before);
  return arrives;
}

void atNextTurn(std::function<void()> turn) {
  static Form nowhere("", {});
  static IntervalTimer timer(&nowhere, 1);
  static std::function<void()> next;
  next = std::move(turn);
  timer.Timer = [] {
    MSG message;
    if (isInputQueued() || PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE) != 0) return;
    timer.Enabled = false;
    std::exchange(next, nullptr)();
  };
  if (!timer.peer) timer.peer = makePolledTimer(timer);
  timer.Enabled = true;
}

}  // namespace kelvora::hands
