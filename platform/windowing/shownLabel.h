#pragma once

#include <string>

#include "platform/widgets.h"

namespace kelvora {

/// The state that a label's peer shows. The game sets the same captions and colours again and again, once a second or
/// once a frame.
class ShownLabel {
 public:
  explicit ShownLabel(const Label& label)
      : label_(label), caption_(label.Caption.get()), back_(label.BackColor.get()) {}

  /// Returns false if the property was set to the value that is shown already.
  bool isNew(PropertyId id) {
    if (id == PropertyId::Caption) return note(caption_, label_.Caption.get());
    if (id == PropertyId::BackColor) return note(back_, label_.BackColor.get());
    return true;
  }

 private:
  template <class T>
  static bool note(T& shown, const T& value) {
    if (shown == value) return false;
    shown = value;
    return true;
  }

  const Label& label_;
  std::string caption_;
  Colour back_;
};

/// Adapts the width of an auto-sized label to its caption. False for other labels.
bool fitWidth(Label& label);

}  // namespace kelvora
