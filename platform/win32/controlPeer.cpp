#include "platform/win32/controlPeer.h"

#include "platform/grid.h"
#include "platform/pictureBox.h"
#include "platform/widgets.h"
#include "platform/win32/formPeer.h"
#include "platform/win32/wideText.h"
#include "platform/windowing/handlerCall.h"
#include "platform/windowing/polledTimers.h"
#include "raster/twips.h"

namespace kelvora {

int shiftBits() {
  const auto isDown = [](int key) { return GetKeyState(key) < 0; };
  return (isDown(VK_SHIFT) ? shiftBit : 0) + (isDown(VK_CONTROL) ? controlBit : 0) + (isDown(VK_MENU) ? altBit : 0);
}

int buttonBits(WPARAM keys) {
  return ((keys & MK_LBUTTON) != 0 ? leftButton : 0) + ((keys & MK_RBUTTON) != 0 ? rightButton : 0) +
         ((keys & MK_MBUTTON) != 0 ? middleButton : 0);
}

std::optional<MouseReport> mouseReport(UINT message) {
  switch (message) {
    case WM_MOUSEMOVE:
      return MouseReport{InputKind::MouseMove, 0};
    case WM_LBUTTONDOWN:
      return MouseReport{InputKind::MouseDown, leftButton};
    case WM_LBUTTONUP:
      return MouseReport{InputKind::MouseUp, leftButton};
    case WM_LBUTTONDBLCLK:
      return MouseReport{InputKind::DoubleClick, leftButton};
    case WM_RBUTTONDOWN:
      return MouseReport{InputKind::MouseDown, rightButton};
    case WM_RBUTTONUP:
      return MouseReport{InputKind::MouseUp, rightButton};
    case WM_RBUTTONDBLCLK:
      return MouseReport{InputKind::DoubleClick, rightButton};
    case WM_MBUTTONDOWN:
      return MouseReport{InputKind::MouseDown, middleButton};
    case WM_MBUTTONUP:
      return MouseReport{InputKind::MouseUp, middleButton};
    case WM_MBUTTONDBLCLK:
      return MouseReport{InputKind::DoubleClick, middleButton};
    default:
      return std::nullopt;
  }
}

void postKey(const InputTarget& target, UINT message, WPARAM first) {
  if (message != WM_CHAR) return target.post({InputKind::KeyDown, static_cast<int>(first), shiftBits()});
  for (const char byte : fromWide(std::wstring(1, static_cast<wchar_t>(first)))) {
    target.post({InputKind::KeyPress, static_cast<unsigned char>(byte)});
  }
}

ControlPeer* peerOf(const Control& control) { return dynamic_cast<ControlPeer*>(control.peer.get()); }

Box ControlPeer::box() const {
  Box place{0, 0, toPixels(control_.Width), toPixels(control_.Height)};
  for (const Control* at = &control_; at->container() != nullptr; at = at->container()) {
    place.left += toPixels(at->Left);
    place.top += toPixels(at->Top);
  }
  return place;
}

bool ControlPeer::isShown() const {
  for (const Control* at = &control_; at->container() != nullptr; at = at->container()) {
    if (!at->Visible) return false;
  }
  return true;
}

void ControlPeer::repaint() const {
  if (isShown()) form_.repaint(box());
}

void ControlPeer::changed(PropertyId id) {
  switch (id) {
    case PropertyId::Left:
    case PropertyId::Top:
    case PropertyId::Width:
    case PropertyId::Height:
    case PropertyId::Visible:
      // Also repaints what it covered.
      form_.followControls(control_);
      form_.repaintAll();
      break;
    case PropertyId::ToolTipText:
      break;
    default:
      repaint();
  }
}

void ControlPeer::take(const Input& input) {
  const auto x = static_cast<float>(input.x * twipsPerPixel);
  const auto y = static_cast<float>(input.y * twipsPerPixel);
  switch (input.kind) {
    case InputKind::DoubleClick:
      if (input.first == leftButton && control_.DblClick) return raiseEvent(control_, control_.DblClick);
      // Without a handler for double-clicks, the second press is an ordinary one.
      return raiseEvent(control_, control_.MouseDown, input.first, input.shift, x, y);
    case InputKind::MouseDown:
      return raiseEvent(control_, control_.MouseDown, input.first, input.shift, x, y);
    case InputKind::MouseMove:
      return raiseEvent(control_, control_.MouseMove, input.first, input.shift, x, y);
    case InputKind::MouseUp: {
      const InputTarget* const self = this;
      const int before = id();
      raiseEvent(control_, control_.MouseUp, input.first, input.shift, x, y);
      const bool isClick = input.inside != 0 && input.first == leftButton;
      if (isClick && InputTarget::find(before) == self) raiseEvent(control_, control_.Click);
      return;
    }
    case InputKind::Click:
      return raiseEvent(control_, control_.Click);
    case InputKind::KeyDown:
      return raiseEvent(control_, control_.KeyDown, input.first, input.shift);
    case InputKind::KeyPress:
      return raiseKeyPress(control_, input.first);
    default:
      return;
  }
}

namespace {

template <class Kind>
bool realizeAs(Control& control, FormPeer& form) {
  auto* kind = dynamic_cast<Kind*>(&control);
  if (kind == nullptr) return false;
  control.peer = makePeer(*kind, form);
  realizeChildren(control, form);
  return true;
}

}  // namespace

void realizeChildren(Control& container, FormPeer& form) {
  for (Control* child : container.children()) {
    if (auto* timer = dynamic_cast<IntervalTimer*>(child)) {
      timer->peer = makePolledTimer(*timer);
      continue;
    }
    // Menu items are none of these: the form's peer creates the menu bar.
    [[maybe_unused]] const bool isShown = realizeAs<Label>(*child, form) || realizeAs<TextBox>(*child, form) ||
                                          realizeAs<Button>(*child, form) || realizeAs<Frame>(*child, form) ||
                                          realizeAs<Image>(*child, form) || realizeAs<Shape>(*child, form) ||
                                          realizeAs<Slider>(*child, form) || realizeAs<PictureBox>(*child, form) ||
                                          realizeAs<CheckBox>(*child, form) || realizeAs<Grid>(*child, form);
  }
}

}  // namespace kelvora
