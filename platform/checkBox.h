#pragma once

#include <string>

#include "platform/control.h"

namespace kelvora {

/// A box that the user ticks, with its caption to the right. MouseDown comes before the press has changed the value;
/// Click comes after the change, however it was made.
class CheckBox : public Control {
 public:
  CheckBox(Control* container, Place place, std::string caption, int value);

  Property<std::string> Caption;
  Property<int> Value;  ///< 0 unticked, 1 ticked
};

}  // namespace kelvora
