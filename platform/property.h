#pragma once

#include <cstdint>
#include <utility>

namespace kelvora {

/// Names the property that changed when a control tells its peer.
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
void notifyPeer(Control& owner, PropertyId id);

/// One property of a control. Assigning it tells the control's peer, if there is one; reading it never asks the peer.
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

  /// Stores what the user or the window system did; the peer shows it already and is not told.
  void adopt(T value) { value_ = std::move(value); }

  friend bool operator==(const Property& property, const T& value) { return property.value_ == value; }

 private:
  Control& owner_;
  T value_;
  PropertyId id_;
};

}  // namespace kelvora
