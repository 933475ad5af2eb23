#include "platform/qt/windowSystem.h"

#include <QGuiApplication>
#include <QStringList>
#include <cstdio>
#include <cstdlib>

namespace kelvora {

namespace {

QStringList heldBack;

bool isNamed(const char* variable) { return !qEnvironmentVariableIsEmpty(variable); }

void say(const QString& line) { std::fprintf(stderr, "kelvora: %s\n", qPrintable(line)); }

[[noreturn]] void endWithoutScreen() {
  QStringList named;
  for (const char* variable : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) {
    if (isNamed(variable)) named += QString("%1=%2").arg(variable, qEnvironmentVariable(variable));
  }
  if (named.isEmpty()) {
    say("there is no screen to show a window on: neither DISPLAY nor WAYLAND_DISPLAY is set. Start the game from a "
        "desktop.");
  } else {
    say("no window can be shown on the screen that the environment names: " + named.join(", "));
    for (const QString& line : heldBack) say(line);
  }
  std::_Exit(1);
}

void holdBack(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  if (type == QtFatalMsg) endWithoutScreen();
  heldBack += qFormatLogMessage(type, context, text);
}

}  // namespace

void chooseWindowSystem() {
  if (isNamed("QT_QPA_PLATFORM")) return;
  if (isNamed("DISPLAY")) {
    qputenv("QT_QPA_PLATFORM", isNamed("WAYLAND_DISPLAY") ? "xcb;wayland" : "xcb");
  } else if (isNamed("WAYLAND_DISPLAY")) {
    qputenv("QT_QPA_PLATFORM", "wayland");
  }
}

void warnMissingFeatures() {
  if (!QGuiApplication::platformName().startsWith("wayland")) return;
  say("running on Wayland, which lets no program place the mouse pointer or its windows: the left button does not keep "
      "the mouse inside the game view. Install XWayland to fix that.");
}

ScreenSearch::ScreenSearch() { qInstallMessageHandler(holdBack); }

ScreenSearch::~ScreenSearch() {
  qInstallMessageHandler(nullptr);
  for (const QString& line : heldBack) std::fprintf(stderr, "%s\n", qPrintable(line));
  heldBack.clear();
}

}  // namespace kelvora
