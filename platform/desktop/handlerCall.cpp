#include "platform/desktop/handlerCall.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "platform/backend.h"
#include "platform/form.h"
#include "platform/widgets.h"

namespace kelvora {

namespace {
int depth = 0;
bool faultReported = false;
std::string noted;
FaultBox* faultBox = nullptr;

Button* findButton(Control& container, Button::Role role) {
  Button* found = nullptr;
  for (Control* child : container.children()) {
    auto* button = dynamic_cast<Button*>(child);
    if (button && button->role == role && button->Visible) found = button;
    if (Button* inside = findButton(*child, role)) found = inside;
  }
  return found;
}
}  // namespace

int handlerDepth() { return depth; }

HandlerScope::HandlerScope() { ++depth; }
HandlerScope::~HandlerScope() {
  if (--depth == 0) noted.clear();
}

void noteForReport(std::string what) { noted = std::move(what); }

bool isFaultReported() { return faultReported; }
void setFaultBox(FaultBox* box) { faultBox = box; }

void reportFault(const char* what) {
  faultReported = true;
  const std::string error = std::string("Run-time error: ") + what;
  std::fprintf(stderr, "kelvora: %s\n", error.c_str());
  const std::string before = noted.empty() ? std::string() : "Just before: " + noted + ".\n";
  if (faultBox) {
    faultBox(error, before + "Kelvora " + appVersionText() + " has to end. If you report this, add what you did last.");
  }
  std::_Exit(1);
}

bool takesEvents(Control& control) {
  const auto* form = dynamic_cast<Form*>(&control.root());
  return !form || !form->isUnloaded();
}

bool answerKey(Control& form, bool enter) {
  Button* answer = findButton(form, enter ? Button::Role::Default : Button::Role::Cancel);
  if (!answer) return false;
  raiseEvent(*answer, answer->Click);
  return true;
}

}  // namespace kelvora
