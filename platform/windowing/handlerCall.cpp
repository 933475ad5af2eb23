#include "platform/windowing/handlerCall.h"

#include <exception>

#include "platform/form.h"

namespace kelvora {

namespace {
int depth = 0;
}  // namespace

int handlerDepth() { return depth; }

HandlerScope::HandlerScope() { ++depth; }
HandlerScope::~HandlerScope() {
  if (--depth == 0) noteForReport({});
}

void runGame(void (*game)()) {
  try {
    game();
  } catch (const std::exception& fault) {
    reportFault(fault.what());
  }
}

bool takesEvents(Control& control) {
  const auto* form = dynamic_cast<Form*>(&control.root());
  return !form || !form->isUnloaded();
}

}  // namespace kelvora
