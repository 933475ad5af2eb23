#include "platform/checkBox.h"

#include <utility>

namespace kelvora {

CheckBox::CheckBox(Control* container, Place place, std::string caption, int value)
    : Control(container, place),
      Caption(*this, PropertyId::Caption, std::move(caption)),
      Value(*this, PropertyId::Value, value) {}

}  // namespace kelvora
