#pragma once

#include <vector>

#include "platform/control.h"

namespace kelvora {

/// Visits all controls inside the container, each before the ones that it contains.
template <class Visit>
void visitControls(const Control& container, const Visit& visit) {
  for (Control* child : container.children()) {
    visit(*child);
    visitControls(*child, visit);
  }
}

/// The form's controls that have a TabIndex, in its order.
std::vector<Control*> controlsInTabOrder(const Control& form);

}  // namespace kelvora
