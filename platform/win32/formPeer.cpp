#include "platform/win32/formPeer.h"

#include <dwmapi.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "platform/widgets.h"
#include "platform/win32/wideText.h"
#include "platform/windowing/answerKey.h"
#include "platform/windowing/handlerCall.h"
#include "raster/twips.h"

namespace kelvora {

namespace {

/// The first form shown. It owns the others, so they stay in front of it.
FormPeer* mainForm = nullptr;

/// The visible forms, in the order in which they were shown.
std::vector<FormPeer*> shownForms;

int unscaled(int pixels, double scale) { return static_cast<int>(std::lround(pixels / scale)); }

DWORD styleOf(const Form& form) {
  const bool isSizable = form.design.border == Form::Border::Sizable;
  return WS_CLIPCHILDREN | (isSizable ? WS_OVERLAPPEDWINDOW : WS_POPUP | WS_CAPTION | WS_SYSMENU);
}

const wchar_t* windowClass(WNDPROC procedure) {
  static const wchar_t* const name = L"KelvoraForm";
  static const ATOM registered = [procedure] {
    WNDCLASSEXW kind{};
    kind.cbSize = sizeof kind;
    kind.style = CS_DBLCLKS;
    kind.lpfnWndProc = procedure;
    kind.hInstance = GetModuleHandleW(nullptr);
    kind.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));  // the arrow
    kind.hIcon = LoadIconW(kind.hInstance, MAKEINTRESOURCEW(1));
    kind.lpszClassName = name;
    return RegisterClassExW(&kind);
  }();
  return registered != 0 ? name : L"";
}

int activeFormId() {
  const HWND active = GetActiveWindow();
  for (const FormPeer* peer : shownForms) {
    if (peer->window() == active) return peer->id();
  }
  return 0;
}

}  // namespace

double scaleAt(UINT dotsPerInch) { return dotsPerInch / double{USER_DEFAULT_SCREEN_DPI}; }

double screenScale(HWND window) { return scaleAt(GetDpiForWindow(window)); }

HWND activeForm() {
  const HWND active = GetActiveWindow();
  return active == nullptr && mainForm != nullptr ? mainForm->window() : active;
}

FormPeer::FormPeer(Form& form)
    : form_(form), looks_(form.design.systemColours ? dialogLooks : looksOn(form.design.back)) {
  isPlacedByGame_ = form.Left != 0.0F || form.Top != 0.0F;
  const HWND owner = mainForm == nullptr ? nullptr : mainForm->window();
  window_ = CreateWindowExW(0, windowClass(&FormPeer::procedure), toWide(form.Caption.get()).c_str(), styleOf(form),
                            CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, owner, nullptr,
                            GetModuleHandleW(nullptr), this);
  if (window_ == nullptr) throw std::runtime_error("there is no desktop to show a window on");
  toolTip_ = std::make_unique<ToolTip>(window_);
  scale_ = screenScale_ = screenScale(window_);
  constexpr DWORD darkTitle = 20;
  const BOOL isDark = TRUE;
  DwmSetWindowAttribute(window_, darkTitle, &isDark, sizeof isDark);
  realizeMenu(form, *this);
  resizeClient(clientWidth(), clientHeight());
}

FormPeer::~FormPeer() {
  std::erase(shownForms, this);
  if (mainForm == this) mainForm = nullptr;
  SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
  DestroyWindow(window_);
}

int FormPeer::clientWidth() const { return toPixels(form_.Width - Form::frameWidth); }
int FormPeer::clientHeight() const { return toPixels(form_.Height - Form::frameHeight); }

RECT FormPeer::workArea() const {
  MONITORINFO info{};
  info.cbSize = sizeof info;
  const HWND where = mainForm == nullptr ? window_ : mainForm->window();
  GetMonitorInfoW(MonitorFromWindow(where, MONITOR_DEFAULTTONEAREST), &info);
  return info.rcWork;
}

void FormPeer::resizeClient(int width, int height) {
  RECT outer{0, 0, scaled(width, scale_), scaled(height, scale_)};
  AdjustWindowRectExForDpi(&outer, styleOf(form_), GetMenu(window_) != nullptr, 0, GetDpiForWindow(window_));
  SetWindowPos(window_, nullptr, 0, 0, outer.right - outer.left, outer.bottom - outer.top,
               SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

/// Where the game wants the window's corner. A dialog that is shown smaller keeps its place.
POINT FormPeer::wantedCorner() const {
  const double scale = screenScale(window_);
  return {scaled(toPixels(form_.Left), scale), scaled(toPixels(form_.Top), scale)};
}

void FormPeer::moveTo(POINT corner) {
  SetWindowPos(window_, nullptr, corner.x, corner.y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void FormPeer::rescale(double scale) {
  scale_ = scale;
  followControls(form_);
  repaintAll();
}

void FormPeer::changed(PropertyId id) {
  switch (id) {
    case PropertyId::Caption:
      SetWindowTextW(window_, toWide(form_.Caption.get()).c_str());
      break;
    case PropertyId::Left:
    case PropertyId::Top:
      isPlacedByGame_ = true;
      moveTo(wantedCorner());
      break;
    case PropertyId::Width:
    case PropertyId::Height:
      resizeClient(clientWidth(), clientHeight());
      break;
    case PropertyId::Visible:
      form_.Visible ? showWindow() : hideWindow();
      break;
    default:
      break;
  }
}

void FormPeer::takeFocus() {
  if (IsIconic(window_) != 0) ShowWindow(window_, SW_RESTORE);
  SetForegroundWindow(window_);
}

/// The modal form shown last, or null.
FormPeer* FormPeer::newestModal() {
  const auto modal = std::find_if(shownForms.rbegin(), shownForms.rend(), [](const FormPeer* peer) {
    return peer->form().modality() == Form::Modality::Modal;
  });
  return modal == shownForms.rend() ? nullptr : *modal;
}

/// While a modal form is visible, only the newest one takes input.
void FormPeer::enableOnlyTheModal() {
  const FormPeer* modal = newestModal();
  for (const FormPeer* peer : shownForms) {
    EnableWindow(peer->window(), modal == nullptr || modal == peer ? TRUE : FALSE);
  }
}

void FormPeer::showWindow() {
  if (mainForm == nullptr) mainForm = this;
  if (std::find(shownForms.begin(), shownForms.end(), this) == shownForms.end()) {
    below_ = form_.modality() == Form::Modality::Modal ? activeFormId() : 0;
    shownForms.push_back(this);
  }
  enableOnlyTheModal();
  if (!isShownBefore_) {
    placeWindow();
    const auto order = tabOrder();
    if (!order.empty()) keyTarget_ = order.front()->id();
  }
  isShownBefore_ = true;
  followControls(form_);
  const FormPeer* modal = newestModal();
  if (modal != nullptr && modal != this) {
    // Below the modal form, which keeps the keyboard.
    SetWindowPos(window_, modal->window(), 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_SHOWWINDOW);
    return;
  }
  ShowWindow(window_, SW_SHOW);
  takeFocus();
}

void FormPeer::hideWindow() {
  std::erase(shownForms, this);
  // Before it hides, so that the system activates the window below and not another program's.
  enableOnlyTheModal();
  const bool wasActive = GetActiveWindow() == window_;
  ShowWindow(window_, SW_HIDE);
  const FormPeer* next = newestModal();
  if (next == nullptr) next = dynamic_cast<const FormPeer*>(InputTarget::find(below_));
  if (wasActive && next != nullptr && next->isShown()) {
    // The system has activated the main window, which owns this one.
    SetForegroundWindow(next->window());
  } else if (!shownForms.empty() && GetActiveWindow() == nullptr) {
    SetForegroundWindow(shownForms.back()->window());
  }
}

/// Centres a form that the game hasn't placed, on the screen or on the main window. Every window starts on the game's
/// screen and no larger than it: the main window gets smaller, and dialogs are shown at a smaller scale.
void FormPeer::placeWindow() {
  const bool isMain = mainForm == this;
  const RECT work = workArea();
  // Its frame and scale are those of the game's screen.
  if (!isMain) moveTo({work.left, work.top});
  RECT frame{};
  AdjustWindowRectExForDpi(&frame, styleOf(form_), GetMenu(window_) != nullptr, 0, GetDpiForWindow(window_));
  const int roomAcross = static_cast<int>(work.right - work.left - (frame.right - frame.left));
  const int roomDown = static_cast<int>(work.bottom - work.top - (frame.bottom - frame.top));
  int width = clientWidth();
  int height = clientHeight();
  if (form_.design.border == Form::Border::Fixed) {
    scale_ = std::min({scale_, static_cast<double>(roomAcross) / width, static_cast<double>(roomDown) / height});
  } else {
    width = std::min(width, unscaled(roomAcross, scale_));
    height = std::min(height, unscaled(roomDown, scale_));
  }
  resizeClient(width, height);
  RECT outer{};
  GetWindowRect(window_, &outer);
  const LONG across = outer.right - outer.left;
  const LONG down = outer.bottom - outer.top;
  POINT corner = wantedCorner();
  if (!isPlacedByGame_) {
    RECT around = work;
    if (!isMain) GetWindowRect(mainForm->window(), &around);
    corner = {(around.left + around.right - across) / 2, (around.top + around.bottom - down) / 2};
  }
  const POINT inside{std::clamp(corner.x, work.left, std::max(work.right - across, work.left)),
                     std::clamp(corner.y, work.top, std::max(work.bottom - down, work.top))};
  moveTo(inside);
  // Keeps the game's position between two pixels.
  if (isPlacedByGame_ && inside.x == corner.x && inside.y == corner.y) return;
  const double scale = screenScale(window_);
  form_.Left.adopt(static_cast<float>(unscaled(inside.x, scale) * twipsPerPixel));
  form_.Top.adopt(static_cast<float>(unscaled(inside.y, scale) * twipsPerPixel));
}

void FormPeer::take(const Input& input) {
  switch (input.kind) {
    case InputKind::Resized: {
      RECT client{};
      GetClientRect(window_, &client);
      const int width = unscaled(client.right, scale_);
      const int height = unscaled(client.bottom, scale_);
      if ((width == clientWidth() && height == clientHeight()) || !takesEvents(form_)) return;
      runHandler([&] {
        form_.clientResized(static_cast<float>(width * twipsPerPixel), static_cast<float>(height * twipsPerPixel));
      });
      return repaintAll();
    }
    case InputKind::Moved: {
      if (!form_.Visible || IsIconic(window_) != 0) return;
      RECT outer{};
      GetWindowRect(window_, &outer);
      const double scale = screenScale(window_);
      const int left = unscaled(outer.left, scale);
      const int top = unscaled(outer.top, scale);
      // Keeps the game's position between two pixels until the window moves.
      if (left == toPixels(form_.Left) && top == toPixels(form_.Top)) return;
      form_.Left.adopt(static_cast<float>(left * twipsPerPixel));
      form_.Top.adopt(static_cast<float>(top * twipsPerPixel));
      return;
    }
    case InputKind::Closed:
      if (takesEvents(form_)) runHandler([this] { form_.closedByUser(); });
      return;
    case InputKind::Activated:
      return raiseEvent(form_, form_.Activate);
    case InputKind::KeyDown:
      answerKey(form_, input.first == VK_RETURN);
      return;
    default:
      return;
  }
}

}  // namespace kelvora
