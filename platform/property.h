#pragma once

#include <cstdint>
#include <utility>

namespace kelvora {

/// Identifies the changed property when a control notifies its peer.
enum class PropertyId : std::uint8_t {
  Left,
  Top,
  Width,
  Height,
  Visible,
  Enabled,
  Caption,
  Text,
  SelStart,
  BackColor,
  ForeColor,
  BorderStyle,
  BorderWidth,
  BorderColor,
  Picture,
  MousePointer,
  Checked,
  FontSize,
  Value,
  Interval,
  ToolTipText,
  Cells,
  CurrentCell,
};

class Control;
/// Tells the control's peer, if any, that the property has a new value.
void notifyPeer(Control& owner, PropertyId id);
/// Tells the seam's watch, if any, that the user or the window system has changed the property.
void noteAdoption(Control& owner, PropertyId id);

/// A property of a control. Assigning it notifies the control's peer, if any. Reading it never calls the peer.
template <class T>
class Property {
 public:
  Property(Control& owner, PropertyId id, T initial = {}) : owner_(owner), value_(std::move(initial)), id_(id) {}
  Property(const Property&) = delete;
  Property& operator=(const Property& other) { return *this = other.value_; }

  operator const T&() const { return value_; }
  const T& get() const { return value_; }

  Property& operator=(const T& value) {
    value_ = value;
    notifyPeer(owner_, id_);
    return *this;
  }

  /// Stores a change made by the user or the window system, without notifying the peer.
  void adopt(T value) {
    value_ = std::move(value);
    noteAdoption(owner_, id_);
  }

  friend bool operator==(const Property& property, const T& value) { return property.value_ == value; }

 private:
  Control& owner_;
  T value_;
  PropertyId id_;
};

}  // namespace kelvora
