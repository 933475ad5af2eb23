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

/// The backend's side of a control: a real widget on the desktop. Controls work the same without one.
class Peer {
 public:
  virtual ~Peer() = default;
  /// The control's property has a new value to show.
  virtual void changed(PropertyId id) = 0;
  /// The keyboard focus is asked for.
  virtual void takeFocus() {}
  /// A surface has a finished picture to show at once.
  virtual void present() {}
};

/// Position and size in twips, relative to the container's client area.
struct Place {
  float left = 0;
  float top = 0;
  float width = 0;
  float height = 0;
};

/// A length that refuses negative values with RuntimeFault "Invalid property value" and then keeps the old one.
class Extent : public Property<float> {
 public:
  using Property<float>::Property;
  Extent& operator=(float twips) {
    if (twips < 0) raiseInvalidPropertyValue();
    Property<float>::operator=(twips);
    return *this;
  }
};

/// What every control has. Controls are state: properties and event handlers, held by the form they stand on, in the
/// order of their declaration; they are neither copied nor moved. Mouse coordinates of events are twips relative to the
/// control; Button and Shift are bit sums (left 1, right 2, middle 4; Shift 1, Ctrl 2, Alt 4).
class Control {
 public:
  /// A control on `container` (a form, frame or picture box); only forms have none.
  Control(Control* container, Place place);
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;
  virtual ~Control();

  Property<float> Left;
  Property<float> Top;
  Extent Width;
  Extent Height;
  Property<bool> Visible;
  Property<std::string> ToolTipText;  ///< shown while the pointer rests on the control; empty for none

  std::function<void()> Click;
  std::function<void(int Button, int Shift, float X, float Y)> MouseDown;
  std::function<void(int Button, int Shift, float X, float Y)> MouseMove;
  std::function<void(int Button, int Shift, float X, float Y)> MouseUp;
  std::function<void(int KeyCode, int Shift)> KeyDown;
  std::function<void(int KeyAscii)> KeyPress;
  std::function<void()> DblClick;

  /// Asks the backend for the keyboard focus.
  void SetFocus();

  /// Position in the order of tabbing, or -1 for a control that is not tabbed to.
  int TabIndex = -1;

  Control* container() const { return container_; }
  const std::vector<Control*>& children() const { return children_; }
  /// The form that this control stands on at any depth (a form is its own).
  Control& root();

  std::unique_ptr<Peer> peer;

 private:
  Control* container_;
  std::vector<Control*> children_;
};

/// A control array: fixed size, index from 0, an index outside is RuntimeFault "Subscript out of range".
template <class T, std::size_t Count>
class ControlArray {
 public:
  /// `make(i)` returns element i; each is built in its place.
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
