#include "tests/platform/windowModel/walker.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "core/modMain.h"
#include "core/startUp.h"
#include "frontend/frmConnect.h"
#include "frontend/frmMain.h"
#include "tests/platform/windowModel/hands.h"
#include "tests/platform/windowModel/process.h"
#include "tests/platform/windowModel/scriptedDesktop.h"

namespace kelvora {

namespace {

constexpr int complained = 3;  // exit status

bool isModal(const Form* form) { return form->modality() == Form::Modality::Modal; }

/// Describes the contents of the screen.
std::string situation() {
  std::string words = modMain::world.localPlayer.isConnected ? "in the game" : "at the title";
  for (const Form* form : hands::visibleForms()) {
    if (form != &*frmMain) words += ", " + form->Caption.get() + (isModal(form) ? " modal" : "");
  }
  if (hands::isBoxVisible()) words += ", a box";
  return words;
}

/// The rule that the windows currently break; empty for none.
std::string complaint() {
  const std::vector<Form*> forms = hands::visibleForms();
  if (std::any_of(forms.begin(), forms.end(), isModal) || hands::isBoxVisible()) {
    const hands::Window newest = hands::newestModal();
    if (newest == nullptr) return "the modal window can't be reached";
    for (Form* form : forms) {
      const hands::Window window = hands::windowOf(*form);
      if (window != newest && hands::takesClicks(window))
        return form->Caption.get() + " takes clicks beside a modal one";
    }
    return hands::takesClicks(newest) ? "" : "the newest modal window takes no clicks";
  }
  for (Form* form : forms) {
    if (!hands::takesClicks(hands::windowOf(*form))) return form->Caption.get() + " takes no clicks";
  }
  if (!hands::takesKeys(hands::windowOf(*frmMain))) return "the main window takes no keys";
  return closingEndsTheProcess() ? "" : "closing the main window does not end the process";
}

/// A step that opens a modal window returns only after that window has closed, so the nested event loop must take the
/// next.
class Walker {
 public:
  Walker(const Steps& steps, Report report) : steps_(steps), report_(std::move(report)) {}

  [[noreturn]] void run() {
    installBackend(&desktop_);
    takeTurn();
    modMain::startGame();
    std::abort();  // the game never returns
  }

 private:
  void takeTurn() {
    hands::atNextTurn([this] { turn(); });
  }

  void turn() {
    report_("seen " + situation());
    const std::string wrong = complaint();
    if (!wrong.empty()) complain(wrong);
    takeTurn();
    if (taken_ < steps_.size()) {
      steps_[taken_++]->perform(desktop_);
    } else {
      goHome();
    }
  }

  /// Closes one modal window, or the main window when none is left.
  void goHome() {
    constexpr int maxWindows = 100;
    if (++closings_ > maxWindows) complain("the modal windows can't be closed");
    const hands::Window newest = hands::newestModal();
    if (newest == nullptr) {
      if (isClosed_) complain("closing the main window at the end does not end the process");
      hands::close(hands::windowOf(*frmMain));
      isClosed_ = true;
    } else if (hands::isBox(newest)) {
      hands::answer(newest);
    } else if (frmConnect.isVisible() && newest == hands::windowOf(*frmConnect)) {
      hands::click(frmConnect->cmdCancel);
    } else {
      hands::close(newest);
    }
  }

  [[noreturn]] void complain(const std::string& what) const {
    const std::string when = taken_ == 0 ? "the start" : steps_[taken_ - 1]->name;
    report_("wrong " + what + ", after: " + when);
    std::_Exit(complained);
  }

  const Steps& steps_;
  Report report_;
  ScriptedDesktop desktop_;
  std::size_t taken_ = 0;
  int closings_ = 0;
  bool isClosed_ = false;
};

}  // namespace

void walkHere(const Steps& steps, Report report) { Walker(steps, std::move(report)).run(); }

}  // namespace kelvora
