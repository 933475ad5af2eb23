#include "tests/platform/windowModel/walk.h"

#include <sys/wait.h>
#include <unistd.h>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "core/modMain.h"
#include "core/startUp.h"
#include "frontend/frmConnect.h"
#include "frontend/frmGameFind.h"
#include "frontend/frmMain.h"
#include "tests/platform/windowModel/hands.h"
#include "tests/platform/windowModel/scriptedDesktop.h"

namespace kelvora {

namespace {

constexpr unsigned maxWalkLength = 240;  // seconds
constexpr int complained = 3;            // exit status

bool isModal(const Form* form) { return form->modality() == Form::Modality::Modal; }

/// Waits for a child to end. Returns how it failed, or nothing for status 0.
std::string endOf(pid_t child) {
  int status = 0;
  waitpid(child, &status, 0);
  if (WIFSIGNALED(status)) return "the process ended by signal " + std::to_string(WTERMSIG(status));
  if (WEXITSTATUS(status) != 0) return "the process ended with status " + std::to_string(WEXITSTATUS(status));
  return {};
}

bool closingEndsTheProcess() {
  constexpr int stillThere = 4;
  const pid_t child = fork();
  if (child == 0) {
    hands::windowOf(*frmMain).windowHandle()->close();
    std::_Exit(stillThere);
  }
  return endOf(child).empty();
}

/// Describes the contents of the screen.
std::string situation() {
  std::string words = modMain::world.localPlayer.isConnected ? "in the game" : "at the title";
  for (const Form* form : hands::visibleForms()) {
    if (form != &*frmMain) words += ", " + form->Caption.get() + (isModal(form) ? " modal" : "");
  }
  if (!hands::visibleBoxes().empty()) words += ", a box";
  return words;
}

/// The rule that the windows currently break; empty for none.
std::string complaint() {
  const std::vector<Form*> forms = hands::visibleForms();
  if (std::ranges::any_of(forms, isModal) || !hands::visibleBoxes().empty()) {
    QWidget* newest = QApplication::activeModalWidget();
    if (!newest || !newest->isVisible()) return "what is modal can't be reached";
    return hands::takesClicks(*newest) ? "" : "the newest modal window takes no clicks";
  }
  for (Form* form : forms) {
    if (!hands::takesClicks(hands::windowOf(*form))) return form->Caption.get() + " takes no clicks";
  }
  if (!hands::takesKeys(hands::windowOf(*frmMain))) return "the main window takes no keys";
  return closingEndsTheProcess() ? "" : "closing the main window does not end the process";
}

/// Runs the game in its own process. A timer takes the steps: one that opens a modal window returns only after that
/// window has closed, so the nested event loop must take the next.
class Walker {
 public:
  Walker(const Steps& steps, int report) : steps_(steps), report_(report) {
    next_.setSingleShot(true);
    QObject::connect(&next_, &QTimer::timeout, [this] { turn(); });
  }

  [[noreturn]] void run() {
    installBackend(&desktop_);
    next_.start(0);
    modMain::startGame();
    std::abort();  // the game never returns
  }

 private:
  void turn() {
    tell("seen " + situation());
    const std::string wrong = complaint();
    if (!wrong.empty()) complain(wrong);
    next_.start(0);
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
    QWidget* newest = QApplication::activeModalWidget();
    if (auto* box = qobject_cast<QMessageBox*>(newest)) {
      hands::click(*box->button(QMessageBox::Ok));
    } else if (newest && frmConnect.isVisible() && newest == &hands::windowOf(*frmConnect)) {
      hands::click(frmConnect->cmdCancel);
    } else if (newest) {
      hands::close(*newest);
    } else {
      hands::close(hands::windowOf(*frmMain));
      complain("closing the main window at the end does not end the process");
    }
  }

  void tell(const std::string& line) const {
    const std::string text = line + "\n";
    if (write(report_, text.data(), text.size()) < 0) std::abort();
  }

  [[noreturn]] void complain(const std::string& what) const {
    const std::string when = taken_ == 0 ? "the start" : steps_[taken_ - 1]->name;
    tell("wrong " + what + ", after: " + when);
    std::_Exit(complained);
  }

  const Steps& steps_;
  int report_;  ///< pipe to the parent
  ScriptedDesktop desktop_;
  QTimer next_;
  std::size_t taken_ = 0;
  int closings_ = 0;
};

std::string readAll(int file) {
  std::string text;
  char piece[4096];
  for (ssize_t count = 0; (count = read(file, piece, sizeof piece)) > 0;) {
    text.append(piece, static_cast<std::size_t>(count));
  }
  return text;
}

}  // namespace

Findings walk(const Steps& steps) {
  int ends[2] = {};
  if (pipe(ends) != 0) std::abort();
  const pid_t child = fork();
  if (child == 0) {
    ::close(ends[0]);
    alarm(maxWalkLength);
    Walker(steps, ends[1]).run();
  }
  ::close(ends[1]);
  std::istringstream report(readAll(ends[0]));
  ::close(ends[0]);
  Findings outcome;
  outcome.complaint = endOf(child);
  for (std::string line; std::getline(report, line);) {
    if (line.starts_with("seen ")) outcome.seen.insert(line.substr(5));
    if (line.starts_with("wrong ")) outcome.complaint = line.substr(6);
  }
  return outcome;
}

Steps shortest(Steps steps) {
  for (std::size_t piece = steps.size(); piece > 0; piece = piece == 1 ? 0 : (piece + 1) / 2) {
    for (std::size_t at = 0; at < steps.size();) {
      Steps fewer = steps;
      const auto begin = fewer.begin() + static_cast<std::ptrdiff_t>(at);
      fewer.erase(begin, begin + static_cast<std::ptrdiff_t>(std::min(piece, steps.size() - at)));
      if (walk(fewer).complaint.empty()) {
        at += piece;
      } else {
        steps = std::move(fewer);
      }
    }
  }
  return steps;
}

}  // namespace kelvora
