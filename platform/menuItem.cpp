#include "platform/menuItem.h"

#include <utility>

namespace kelvora {

MenuItem::MenuItem(Control* container, std::string caption, Design design)
    : Control(container, {}),
      Caption(*this, PropertyId::Caption, std::move(caption)),
      Checked(*this, PropertyId::Checked, design == Design::Checked),
      Enabled(*this, PropertyId::Enabled, design != Design::Disabled) {}

}  // namespace kelvora
