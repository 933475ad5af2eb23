#include "platform/desktop/handlerCall.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <utility>

#include "platform/backend.h"
#include "platform/desktop/controlWalk.h"
#include "platform/form.h"
#include "platform/widgets.h"

namespace kelvora {

namespace {
int depth = 0;
bool faultReported = false;
std::string noted;
std::string recordingFile;
FaultBox* faultBox = nullptr;
}  // namespace

int handlerDepth() { return depth; }

HandlerScope::HandlerScope() { ++depth; }
HandlerScope::~HandlerScope() {
  if (--depth == 0) noted.clear();
}

void noteForReport(std::string what) { noted = std::move(what); }

void nameRecording(std::string file) { recordingFile = std::move(file); }

bool isFaultReported() { return faultReported; }
void setFaultBox(FaultBox* box) { faultBox = box; }

void reportFault(const char* what) {
  faultReported = true;
  const std::string error = std::string("Run-time error: ") + what;
  std::fprintf(stderr, "kelvora: %s\n", error.c_str());
  const std::string before = noted.empty() ? std::string() : "Just before: " + noted + ".\n";
  if (faultBox) {
    const std::string proof = recordingFile.empty() ? "what you did last" : "the recording " + recordingFile;
    faultBox(error, before + "Kelvora " + appVersionText() + " has to end. If you report this, add " + proof + ".");
  }
  std::_Exit(1);
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

bool answerKey(Control& form, bool enter) {
  const Button::Role role = enter ? Button::Role::Default : Button::Role::Cancel;
  Button* answer = nullptr;
  visitControls(form, [&answer, role](Control& control) {
    auto* button = dynamic_cast<Button*>(&control);
    if (button && button->role == role && button->Visible) answer = button;
  });
  if (!answer) return false;
  raiseEvent(*answer, answer->Click);
  return true;
}

}  // namespace kelvora
