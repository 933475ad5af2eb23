#pragma once

#include <string>

#include "platform/control.h"

namespace kelvora {

/// An entry of a menu bar. Its container is the menu above it, or the form for the top row. The caption "-" is a
/// separator. Children are in the order of declaration.
class MenuItem : public Control {
 public:
  enum class Design { Plain, Checked, Disabled };
  MenuItem(Control* container, std::string caption, Design design = Design::Plain);

  Property<std::string> Caption;
  Property<bool> Checked;
  Property<bool> Enabled;
};

}  // namespace kelvora
