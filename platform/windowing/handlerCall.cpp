#include "platform/windowing/handlerCall.h"

#include <cstddef>
#include <exception>
#include <string>

#include "platform/form.h"
#include "platform/widgets.h"

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

void raiseKeyPress(Control& control, int byte) {
  constexpr std::size_t maxCommandLength = 60;  // characters in the report
  const auto* box = dynamic_cast<const TextBox*>(&control);
  const bool isNoted = box && box->KeyPress && takesEvents(control) && !box->design.isSecret;
  if (isNoted && byte == keyEnter && box->Text.get().starts_with('~')) {
    noteForReport("the command " + box->Text.get().substr(0, maxCommandLength));
  }
  raiseEvent(control, control.KeyPress, byte);
}

}  // namespace kelvora
