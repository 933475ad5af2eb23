#include <algorithm>

#include "platform/widgets.h"
#include "platform/win32/formPeer.h"
#include "platform/windowing/controlWalk.h"
#include "raster/surface.h"

namespace kelvora {

void FormPeer::repaint(const Box& box) const {
  const RECT place = deviceRect(box, scale_);
  InvalidateRect(window_, &place, FALSE);
}

void FormPeer::repaintAll() const { InvalidateRect(window_, nullptr, FALSE); }

void FormPeer::presentNow(ControlPeer& picture, std::span<const PixelArea> areas) {
  if (IsIconic(window_) != 0) return;
  const Box place = picture.box();
  const int top = place.top + areas.front().y;
  const Box rows{place.left, top, place.width, place.top + areas.back().y + areas.back().height - top};
  if (pictureAt(deviceRect(rows, scale_)) == &picture) {
    const HDC dc = GetDC(window_);
    picture.paintParts(Painter(dc, scale_), place, areas);
    ReleaseDC(window_, dc);
  } else {
    repaint(rows);
    UpdateWindow(window_);
  }
}

void FormPeer::paintWindow() {
  PAINTSTRUCT paint{};
  const HDC screen = BeginPaint(window_, &paint);
  const RECT& part = paint.rcPaint;
  if (ControlPeer* picture = pictureAt(part)) {
    picture->paint(Painter(screen, scale_), picture->box());
  } else if (IsRectEmpty(&part) == 0) {
    paintBuffered(screen, part);
  }
  EndPaint(window_, &paint);
}

/// Strip by strip in memory, so that nothing flickers where controls lie on top of each other. A buffer for the whole
/// window would be as large as the game's picture.
void FormPeer::paintBuffered(HDC screen, const RECT& part) const {
  constexpr LONG stripHeight = 64;
  const LONG width = part.right - part.left;
  const HDC dc = CreateCompatibleDC(screen);
  const HBITMAP buffer = CreateCompatibleBitmap(screen, width, stripHeight);
  const HGDIOBJ before = SelectObject(dc, buffer);
  for (LONG top = part.top; top < part.bottom; top += stripHeight) {
    const RECT strip{part.left, top, part.right, std::min(top + stripHeight, part.bottom)};
    SetViewportOrgEx(dc, -strip.left, -strip.top, nullptr);
    SetDCBrushColor(dc, toColorRef(looks_.ground));
    FillRect(dc, &strip, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
    paintControls(Painter(dc, scale_), form_, strip);
    constexpr DWORD copy = 0x00CC0020;
    BitBlt(screen, strip.left, strip.top, width, strip.bottom - strip.top, dc, strip.left, strip.top, copy);
  }
  SelectObject(dc, before);
  DeleteObject(buffer);
  DeleteDC(dc);
}

ControlPeer* FormPeer::pictureAt(const RECT& part) const {
  const auto& children = form_.children();
  for (auto child = children.rbegin(); child != children.rend(); ++child) {
    ControlPeer* peer = peerOf(**child);
    if (peer == nullptr || !(*child)->Visible) continue;
    const RECT reach = deviceRect(peer->reach(peer->box()), scale_);
    RECT common{};
    if (IntersectRect(&common, &reach, &part) == 0) continue;
    const auto& above = (*child)->children();
    const bool isAlone =
        std::none_of(above.begin(), above.end(), [](const Control* one) { return one->Visible.get(); });
    return EqualRect(&common, &part) != 0 && peer->isOpaque() && isAlone ? peer : nullptr;
  }
  return nullptr;
}

void FormPeer::paintControls(const Painter& painter, const Control& container, const RECT& part) const {
  const HDC dc = painter.dc();
  for (const Control* child : container.children()) {
    ControlPeer* peer = peerOf(*child);
    if (peer == nullptr || !child->Visible) continue;
    const Box place = peer->box();
    const RECT reach = deviceRect(peer->reach(place), scale_);
    RECT common{};
    if (IntersectRect(&common, &reach, &part) == 0) continue;
    const int saved = SaveDC(dc);
    IntersectClipRect(dc, common.left, common.top, common.right, common.bottom);
    peer->paint(painter, place);
    paintControls(painter, *child, common);
    peer->paintOver(painter, place);
    RestoreDC(dc, saved);
  }
}

ControlPeer* FormPeer::at(const Control& container, int x, int y) const {
  const auto& children = container.children();
  for (auto child = children.rbegin(); child != children.rend(); ++child) {
    ControlPeer* peer = peerOf(**child);
    if (peer == nullptr || !(*child)->Visible || !peer->takesMouse() || !peer->box().contains(x, y)) continue;
    ControlPeer* inside = at(**child, x, y);
    return inside == nullptr ? peer : inside;
  }
  return nullptr;
}

void FormPeer::followControls(const Control& control) const {
  if (ControlPeer* peer = peerOf(control)) peer->follow();
  visitControls(control, [](const Control& child) {
    if (ControlPeer* peer = peerOf(child)) peer->follow();
  });
}

std::vector<ControlPeer*> FormPeer::tabOrder() const {
  std::vector<ControlPeer*> order;
  for (const Control* control : controlsInTabOrder(form_)) {
    ControlPeer* peer = peerOf(*control);
    if (peer != nullptr && peer->window() != nullptr && peer->isShown()) order.push_back(peer);
  }
  return order;
}

void FormPeer::focus(const ControlPeer& peer) {
  keyTarget_ = peer.id();
  if (peer.window() != nullptr) SetFocus(peer.window());
}

void FormPeer::focusNext(bool backwards) {
  const auto order = tabOrder();
  if (order.empty()) return;
  const auto now =
      std::find_if(order.begin(), order.end(), [this](const ControlPeer* peer) { return peer->id() == keyTarget_; });
  const std::size_t count = order.size();
  const auto index = static_cast<std::size_t>(now - order.begin());
  const std::size_t next = now == order.end() ? 0 : (index + (backwards ? count - 1 : 1)) % count;
  if (next == index) return;
  focus(*order[next]);
  // A text box's whole text. Others have no such message.
  SendMessageW(order[next]->window(), EM_SETSEL, 0, -1);
}

}  // namespace kelvora
