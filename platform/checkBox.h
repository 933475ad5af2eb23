#pragma once

#include <string>

#include "platform/control.h"

namespace kelvora {

/// A check box with its caption to the right. MouseDown is raised before a press changes the value, Click after any
/// change.
class CheckBox : public Control {
 public:
  CheckBox(Control* container, Place place, std::string caption, int value);

  Property<std::string> Caption;
  Property<int> Value;  ///< 0 unchecked, 1 checked
};

}  // namespace kelvora
