#include "platform/desktop/handlerCall.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "platform/backend.h"
#include "platform/form.h"

namespace kelvora {

namespace {
int depth = 0;
bool faultReported = false;
std::string noted;
FaultBox* faultBox = nullptr;
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

}  // namespace kelvora
