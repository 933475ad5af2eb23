#include <algorithm>

#include "platform/desktop/controlWalk.h"
#include "platform/widgets.h"
#include "platform/win32/formPeer.h"

namespace kelvora {

void FormPeer::repaint(const Box& box) const {
  const RECT place = deviceRect(box, scale_);
  InvalidateRect(window_, &place, FALSE);
}

void FormPeer::repaintAll() const { InvalidateRect(window_, nullptr, FALSE); }

void FormPeer::presentNow(const Box& box) const {
  repaint(box);
  UpdateWindow(window_);
}

void FormPeer::paintWindow() {
  PAINTSTRUCT paint{};
  const HDC screen = BeginPaint(window_, &paint);
  RECT client{};
  GetClientRect(window_, &client);
  if (buffer_ == nullptr || bufferSize_.cx != client.right || bufferSize_.cy != client.bottom) {
    if (buffer_ != nullptr) DeleteObject(buffer_);
    bufferSize_ = {client.right, client.bottom};
    buffer_ = CreateCompatibleBitmap(screen, std::max(bufferSize_.cx, 1L), std::max(bufferSize_.cy, 1L));
    paint.rcPaint = client;
  }
  const RECT& part = paint.rcPaint;
  const HDC dc = CreateCompatibleDC(screen);
  const HGDIOBJ before = SelectObject(dc, buffer_);
  IntersectClipRect(dc, part.left, part.top, part.right, part.bottom);
  SetDCBrushColor(dc, toColorRef(looks_.ground));
  FillRect(dc, &part, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
  paintControls(Painter(dc, scale_), form_);
  constexpr DWORD copy = 0x00CC0020;
  BitBlt(screen, part.left, part.top, part.right - part.left, part.bottom - part.top, dc, part.left, part.top, copy);
  SelectObject(dc, before);
  DeleteDC(dc);
  EndPaint(window_, &paint);
}

void FormPeer::paintControls(const Painter& painter, const Control& container) const {
  const HDC dc = painter.dc();
  for (const Control* child : container.children()) {
    ControlPeer* peer = peerOf(*child);
    if (peer == nullptr || !child->Visible) continue;
    const Box place = peer->box();
    const RECT reach = deviceRect(peer->reach(place), scale_);
    const int saved = SaveDC(dc);
    if (IntersectClipRect(dc, reach.left, reach.top, reach.right, reach.bottom) != NULLREGION) {
      peer->paint(painter, place);
      paintControls(painter, *child);
      peer->paintOver(painter, place);
    }
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
  focus(*order[next]);
}

}  // namespace kelvora
