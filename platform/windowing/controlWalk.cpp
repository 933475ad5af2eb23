#include "platform/windowing/controlWalk.h"

#include <algorithm>

namespace kelvora {

std::vector<Control*> controlsInTabOrder(const Control& form) {
  std::vector<Control*> order;
  visitControls(form, [&order](Control& control) {
    if (control.TabIndex >= 0) order.push_back(&control);
  });
  std::stable_sort(order.begin(), order.end(),
                   [](const Control* a, const Control* b) { return a->TabIndex < b->TabIndex; });
  return order;
}

}  // namespace kelvora
