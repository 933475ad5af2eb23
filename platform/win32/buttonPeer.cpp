#include <algorithm>

#include "platform/widgets.h"
#include "platform/win32/formPeer.h"
#include "platform/win32/nativePeer.h"
#include "platform/win32/wideText.h"

namespace kelvora {

namespace {

constexpr UINT centred = DT_CENTER | DT_VCENTER;

Colour lighter(Colour colour) {
  constexpr int step = 14;
  return RGB(std::min(colour.red + step, 255), std::min(colour.green + step, 255), std::min(colour.blue + step, 255));
}

/// A button that the game paints, so that it is as dark as the form.
class PushPeer : public NativePeer {
 public:
  PushPeer(Control& control, const Property<std::string>& caption, FormPeer& form)
      : NativePeer(control, form, WC_BUTTONW, BS_OWNERDRAW, FontSpec{}), caption_(caption) {
    nameWindow();
  }

  void changed(PropertyId id) override {
    NativePeer::changed(id);
    if (id == PropertyId::Caption) nameWindow();
    InvalidateRect(window(), nullptr, FALSE);
  }

  void command(int code) override {
    // The second press of a double-click is a click as well.
    if (code == BN_CLICKED || code == BN_DBLCLK) post({InputKind::Click});
  }

  void draw(const DRAWITEMSTRUCT& item) override {
    const Box place = box();
    paintFace(Painter(item.hDC, form().scale()), {0, 0, place.width, place.height}, item.itemState);
  }

 protected:
  virtual void paintFace(const Painter& painter, const Box& place, UINT state) = 0;
  std::wstring caption() const { return toWide(caption_.get()); }

  bool handle(UINT message, WPARAM, LPARAM, LRESULT&) override {
    const auto mouse = mouseReport(message);
    // The second press of a double-click is a press as well.
    const bool isPress = mouse && (mouse->kind == InputKind::MouseDown || mouse->kind == InputKind::DoubleClick);
    if (isPress) post({InputKind::MouseDown, mouse->button, shiftBits()});
    if (message == WM_SETFOCUS || message == WM_KILLFOCUS) InvalidateRect(window(), nullptr, FALSE);
    return false;
  }

 private:
  /// Screen readers say the window's text, which isn't in sight.
  void nameWindow() const { SetWindowTextW(window(), caption().c_str()); }

  const Property<std::string>& caption_;
};

class ButtonPeer : public PushPeer {
 public:
  ButtonPeer(Button& button, FormPeer& form) : PushPeer(button, button.Caption, form), button_(button) {}

 protected:
  void paintFace(const Painter& painter, const Box& place, UINT state) override {
    const Looks& looks = form().looks();
    const bool isPressed = (state & ODS_SELECTED) != 0;
    const bool isFocused = (state & ODS_FOCUS) != 0;
    const bool isDefault = button_.role == Button::Role::Default;
    painter.fill(place, isPressed ? looks.ground : isDefault ? lighter(looks.raised) : looks.raised);
    painter.border(place, isFocused ? looks.chosen : looks.line);
    painter.text(place, caption(), FontSpec{}, looks.text, centred);
  }

  bool handle(UINT message, WPARAM first, LPARAM second, LRESULT& result) override {
    const bool isEnter = message == WM_KEYDOWN && first == VK_RETURN;
    if (isEnter) post({InputKind::Click});
    return isEnter || PushPeer::handle(message, first, second, result);
  }

 private:
  Button& button_;
};

class CheckBoxPeer : public PushPeer {
 public:
  CheckBoxPeer(CheckBox& box, FormPeer& form) : PushPeer(box, box.Caption, form), box_(box) {}

  void take(const Input& input) override {
    if (input.kind == InputKind::Click) {
      box_.Value.adopt(box_.Value != 0 ? 0 : 1);
      InvalidateRect(window(), nullptr, FALSE);
    }
    PushPeer::take(input);
  }

 protected:
  void paintFace(const Painter& painter, const Box& place, UINT state) override {
    constexpr int side = 13;
    constexpr int gap = 5;
    const Looks& looks = form().looks();
    const Box square{0, (place.height - side) / 2, side, side};
    painter.fill(place, looks.ground);
    painter.fill(square, looks.field);
    painter.border(square, (state & ODS_FOCUS) != 0 ? looks.chosen : looks.line);
    constexpr int inset = 3;
    if (box_.Value != 0) painter.tick({inset, square.top + inset, side - 2 * inset, side - 2 * inset}, looks.text);
    painter.text({side + gap, 0, place.width - side - gap, place.height}, caption(), FontSpec{}, looks.text,
                 DT_LEFT | DT_VCENTER);
  }

 private:
  CheckBox& box_;
};

}  // namespace

std::unique_ptr<ControlPeer> makePeer(Button& button, FormPeer& form) {
  return std::make_unique<ButtonPeer>(button, form);
}
std::unique_ptr<ControlPeer> makePeer(CheckBox& box, FormPeer& form) {
  return std::make_unique<CheckBoxPeer>(box, form);
}

}  // namespace kelvora
