#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/fault.h"
#include "platform/property.h"

namespace kelvora {

/// The backend's side of a control: a real widget on the desktop. Controls also work without one.
class Peer {
 public:
  virtual ~Peer() = default;
  /// Called when a property has a new value to show.
  virtual void changed(PropertyId id) = 0;
  /// Called to give the control the keyboard focus.
  virtual void takeFocus() {}
  /// Called to present a surface's finished picture at once.
  virtual void present() {}
};

/// Tells the seam's watch, if any, that the game calls a peer as long as this exists.
class PeerCall {
 public:
  PeerCall();
  ~PeerCall();
  PeerCall(const PeerCall&) = delete;
  PeerCall& operator=(const PeerCall&) = delete;
};

/// Position and size in twips, relative to the container's client area.
struct Place {
  float left = 0;
  float top = 0;
  float width = 0;
  float height = 0;
};

/// A width or height in twips. Assigning a negative value raises RuntimeFault "Invalid property value" and keeps the
/// old one.
class Extent : public Property<float> {
 public:
  using Property<float>::Property;
  Extent& operator=(float twips) {
    if (twips < 0) raiseInvalidPropertyValue();
    Property<float>::operator=(twips);
    return *this;
  }
};

// An event's Button is a bit sum of these.
inline constexpr int leftButton = 1;
inline constexpr int rightButton = 2;
inline constexpr int middleButton = 4;

// An event's Shift is a bit sum of these.
inline constexpr int shiftBit = 1;
inline constexpr int controlBit = 2;
inline constexpr int altBit = 4;

// An event's KeyCode is a virtual-key code, such as these. The first two are also KeyAscii's.
inline constexpr int keyEnter = 13;
inline constexpr int keyEscape = 27;
inline constexpr int keyUp = 38;
inline constexpr int keyDown = 40;
inline constexpr int keyF1 = 112;

/// The base of all controls. A control is state: properties and event handlers. It belongs to a form, in the order of
/// declaration, and can be neither copied nor moved. Mouse coordinates of events are twips relative to the control.
class Control {
 public:
  /// Creates a control on `container` (a form, frame or picture box). Only forms have none.
  Control(Control* container, Place place);
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;
  virtual ~Control();

  Property<float> Left;
  Property<float> Top;
  Extent Width;
  Extent Height;
  Property<bool> Visible;
  Property<std::string> ToolTipText;  ///< shown while the pointer hovers over the control; empty for none

  std::function<void()> Click;
  std::function<void(int Button, int Shift, float X, float Y)> MouseDown;
  std::function<void(int Button, int Shift, float X, float Y)> MouseMove;
  std::function<void(int Button, int Shift, float X, float Y)> MouseUp;
  std::function<void(int KeyCode, int Shift)> KeyDown;
  std::function<void(int KeyAscii)> KeyPress;  ///< a character of code page 1252
  std::function<void()> DblClick;

  /// Requests the keyboard focus from the backend.
  void SetFocus();

  /// Position in the tab order, or -1 for a control that isn't in it.
  int TabIndex = -1;

  Control* container() const { return container_; }
  const std::vector<Control*>& children() const { return children_; }
  /// The form that contains this control at any depth. A form contains itself.
  Control& root();

  std::unique_ptr<Peer> peer;

 private:
  Control* container_;
  std::vector<Control*> children_;
};

/// A fixed-size array of controls. RuntimeFault "Subscript out of range" for an invalid index.
template <class T, std::size_t Count>
class ControlArray {
 public:
  /// `make(i)` constructs element i in place.
  template <class Make>
  explicit ControlArray(Make make) : ControlArray(make, std::make_index_sequence<Count>{}) {}

  static constexpr int UBound = static_cast<int>(Count) - 1;

  T& operator[](int index) {
    if (index < 0 || index > UBound) raiseSubscriptOutOfRange();
    return items_[static_cast<std::size_t>(index)];
  }
  auto begin() { return items_.begin(); }
  auto end() { return items_.end(); }

 private:
  template <class Make, std::size_t... Index>
  ControlArray(Make& make, std::index_sequence<Index...>) : items_{make(static_cast<int>(Index))...} {}

  std::array<T, Count> items_;
};

}  // namespace kelvora
