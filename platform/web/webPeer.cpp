#include "platform/web/webPeer.h"

#include "platform/grid.h"
#include "platform/menuItem.h"
#include "platform/pictureBox.h"
#include "platform/web/page.h"
#include "platform/widgets.h"
#include "platform/windowing/handlerCall.h"
#include "platform/windowing/polledTimers.h"
#include "raster/twips.h"

namespace kelvora {

WebPeer::WebPeer(Control& control, int parent, const char* kind) : control_(control) {
  page_create(id(), parent, kind);
  if (parent != noParent) showPlace();
  if (!control.Visible && parent != noParent) set("Visible", 0);
  if (!control.ToolTipText.get().empty()) set("ToolTipText", control.ToolTipText.get());
}

WebPeer::~WebPeer() { page_remove(id()); }

void WebPeer::showPlace() {
  for (const PropertyId id : {PropertyId::Left, PropertyId::Top, PropertyId::Width, PropertyId::Height}) changed(id);
}

void WebPeer::changed(PropertyId id) {
  switch (id) {
    case PropertyId::Left:
      return set("Left", toPixels(control_.Left));
    case PropertyId::Top:
      return set("Top", toPixels(control_.Top));
    case PropertyId::Width:
      set("Width", toPixels(control_.Width));
      return show(id);
    case PropertyId::Height:
      set("Height", toPixels(control_.Height));
      return show(id);
    case PropertyId::Visible:
      return set("Visible", control_.Visible ? 1 : 0);
    case PropertyId::ToolTipText:
      return set("ToolTipText", control_.ToolTipText.get());
    default:
      show(id);
  }
}

void WebPeer::showTabIndex() const { set("TabIndex", control_.TabIndex >= 0 ? control_.TabIndex + 1 : -1); }

void WebPeer::takeFocus() { page_focus(id()); }

void WebPeer::take(const PageEvent& event) {
  const auto x = static_cast<float>(event.x * twipsPerPixel);
  const auto y = static_cast<float>(event.y * twipsPerPixel);
  switch (event.kind) {
    case PageEventKind::MouseDown:
      return raiseEvent(control_, control_.MouseDown, event.first, event.shift, x, y);
    case PageEventKind::MouseMove:
      return raiseEvent(control_, control_.MouseMove, event.first, event.shift, x, y);
    case PageEventKind::MouseUp:
      raiseEvent(control_, control_.MouseUp, event.first, event.shift, x, y);
      if (event.isInside && event.first == leftButton) raiseEvent(control_, control_.Click);
      return;
    case PageEventKind::DoubleClick:
      return raiseEvent(control_, control_.DblClick);
    case PageEventKind::KeyDown:
      return raiseEvent(control_, control_.KeyDown, event.first, event.shift);
    case PageEventKind::KeyPress:
      return raiseKeyPress(control_, event.first);
    default:
      return;
  }
}

void WebPeer::set(const char* property, double value) const { page_setNumber(id(), property, value); }

void WebPeer::set(const char* property, const std::string& text) const {
  page_setText(id(), property, text.data(), text.size());
}

void WebPeer::set(const char* property, Colour colour) const { set(property, static_cast<double>(toPixel(colour))); }

std::string cssFont(const FontSpec& font, float points) {
  std::string family;
  for (const char letter : font.family) {
    if (letter != '"' && letter != '\\' && static_cast<unsigned char>(letter) >= 32) family += letter;
  }
  return (font.bold ? "bold " : "") + std::to_string(fontPixels(points)) + "px \"" + family + "\", \"MS Sans Serif\"";
}

namespace {

template <class Kind>
bool realizeAs(Control& control, int parent) {
  auto* kind = dynamic_cast<Kind*>(&control);
  if (kind == nullptr) return false;
  makePeer(*kind, parent);
  realizeChildren(control, dynamic_cast<PageObject&>(*control.peer).id());
  return true;
}

}  // namespace

void realizeChildren(Control& container, int parent) {
  for (Control* child : container.children()) {
    if (auto* timer = dynamic_cast<IntervalTimer*>(child)) {
      timer->peer = makePolledTimer(*timer);
      continue;
    }
    [[maybe_unused]] const bool isShown =
        realizeAs<Label>(*child, parent) || realizeAs<TextBox>(*child, parent) || realizeAs<Button>(*child, parent) ||
        realizeAs<Frame>(*child, parent) || realizeAs<Image>(*child, parent) || realizeAs<Shape>(*child, parent) ||
        realizeAs<Slider>(*child, parent) || realizeAs<PictureBox>(*child, parent) ||
        realizeAs<CheckBox>(*child, parent) || realizeAs<Grid>(*child, parent) || realizeAs<MenuItem>(*child, parent);
  }
}

}  // namespace kelvora
