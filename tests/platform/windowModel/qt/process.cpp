#include "tests/platform/windowModel/process.h"

#include <sys/wait.h>
#include <unistd.h>

#include <QWidget>
#include <QWindow>
#include <cstdlib>
#include <iostream>
#include <memory>

#include "frontend/frmMain.h"
#include "platform/qt/gameLooks.h"
#include "tests/platform/qt/offscreenToolkit.h"
#include "tests/platform/windowModel/hands.h"
#include "tests/platform/windowModel/scriptedDesktop.h"
#include "tests/platform/windowModel/walker.h"

// Each walk runs the game in a copy of this process, which has the toolkit without a screen.

namespace kelvora {

namespace {

constexpr unsigned maxWalkLength = 240;  // seconds

/// Waits for a child to end. Returns how it failed, or nothing for status 0.
std::string endOf(pid_t child) {
  int status = 0;
  waitpid(child, &status, 0);
  if (WIFSIGNALED(status)) return "the process ended by signal " + std::to_string(WTERMSIG(status));
  if (WEXITSTATUS(status) != 0) return "the process ended with status " + std::to_string(WEXITSTATUS(status));
  return {};
}

std::string readAll(int file) {
  std::string text;
  char piece[4096];
  for (ssize_t count = 0; (count = read(file, piece, sizeof piece)) > 0;) {
    text.append(piece, static_cast<std::size_t>(count));
  }
  return text;
}

}  // namespace

std::shared_ptr<void> prepareWalks() {
  qunsetenv("KELVORA_FRAME_MS");
  qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
    // Windows without a screen have no size hints and no order.
    if (!text.startsWith("This plugin does not support")) std::cerr << qPrintable(text) << "\n";
    if (type == QtFatalMsg) std::abort();
  });
  auto toolkit = std::make_shared<OffscreenToolkit>();
  QApplication::setQuitOnLastWindowClosed(false);
  installGameLooks();
  ScriptedDesktop::readPictures();
  return toolkit;
}

bool closingEndsTheProcess() {
  constexpr int stillThere = 4;
  const pid_t child = fork();
  if (child == 0) {
    static_cast<QWidget*>(hands::windowOf(*frmMain))->windowHandle()->close();
    std::_Exit(stillThere);
  }
  return endOf(child).empty();
}

Ended runApart(const Steps& steps) {
  int ends[2] = {};
  if (pipe(ends) != 0) std::abort();
  const pid_t child = fork();
  if (child == 0) {
    ::close(ends[0]);
    alarm(maxWalkLength);
    walkHere(steps, [report = ends[1]](const std::string& line) {
      const std::string text = line + "\n";
      if (write(report, text.data(), text.size()) < 0) std::abort();
    });
  }
  ::close(ends[1]);
  Ended ended;
  ended.report = readAll(ends[0]);
  ::close(ends[0]);
  ended.failure = endOf(child);
  return ended;
}

}  // namespace kelvora
