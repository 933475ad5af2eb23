#pragma once

#include <memory>
#include <optional>
#include <span>

#include "platform/control.h"
#include "platform/win32/eventQueue.h"
#include "platform/win32/painter.h"

namespace kelvora {

class Button;
class CheckBox;
class Form;
class Frame;
class FormPeer;
class Grid;
class Image;
class Label;
class PictureBox;
class Shape;
class Slider;
class TextBox;

/// Bits of the buttons and shift keys that are down now.
int shiftBits();
int buttonBits(WPARAM keys);

/// The report of a mouse message.
struct MouseReport {
  InputKind kind;
  int button;  ///< bit; 0 for a move
};
/// None for other messages.
std::optional<MouseReport> mouseReport(UINT message);

/// Posts the bytes of WM_CHAR as KeyPress, and other messages about keys as KeyDown.
void postKey(const InputTarget& target, UINT message, WPARAM first);

/// The peer of a control that the form paints. It has no window of its own, so that it can show what is below it.
class ControlPeer : public Peer, public InputTarget {
 public:
  ControlPeer(Control& control, FormPeer& form) : control_(control), form_(form) {}

  void changed(PropertyId id) override;
  void take(const Input& input) override;

  /// Draws the control, below its children.
  virtual void paint(const Painter&, const Box&) {}
  /// Draws only these areas of a picture.
  virtual void paintParts(const Painter&, const Box&, std::span<const PixelArea>) {}
  /// Draws what lies above its children.
  virtual void paintOver(const Painter&, const Box&) {}
  /// Called when the control, its container or the form's scale has changed its place or visibility.
  virtual void follow() {}
  /// The area it may draw on.
  virtual Box reach(const Box& place) const { return place; }
  /// True if it paints every pixel of its place, and nothing outside.
  virtual bool isOpaque() const { return false; }
  virtual bool takesMouse() const { return true; }
  virtual bool takesMovesOutside() const { return true; }
  /// True if a press gives it the keyboard.
  virtual bool takesKeys() const { return false; }
  /// The control's native window. Null if it has none.
  virtual HWND window() const { return nullptr; }

  Control& control() const { return control_; }
  /// Its place in the form.
  Box box() const;
  /// True if it and all of its containers are visible.
  bool isShown() const;

 protected:
  FormPeer& form() const { return form_; }
  void repaint() const;

 private:
  Control& control_;
  FormPeer& form_;
};

ControlPeer* peerOf(const Control& control);

// One function for each kind of control.
std::unique_ptr<ControlPeer> makePeer(Label& label, FormPeer& form);
std::unique_ptr<ControlPeer> makePeer(TextBox& box, FormPeer& form);
std::unique_ptr<ControlPeer> makePeer(Button& button, FormPeer& form);
std::unique_ptr<ControlPeer> makePeer(Frame& frame, FormPeer& form);
std::unique_ptr<ControlPeer> makePeer(Image& image, FormPeer& form);
std::unique_ptr<ControlPeer> makePeer(Shape& shape, FormPeer& form);
std::unique_ptr<ControlPeer> makePeer(Slider& slider, FormPeer& form);
std::unique_ptr<ControlPeer> makePeer(CheckBox& box, FormPeer& form);
std::unique_ptr<ControlPeer> makePeer(Grid& grid, FormPeer& form);
std::unique_ptr<ControlPeer> makePeer(PictureBox& box, FormPeer& form);

/// Creates the peers of all controls on `container`, in order of declaration. Later ones are on top.
void realizeChildren(Control& container, FormPeer& form);

}  // namespace kelvora
