#pragma once

#include <exception>
#include <functional>
#include <string>

namespace kelvora {

class Control;

/// How many handlers of the game, message boxes and event loops are running inside one another.
int handlerDepth();

class HandlerScope {
 public:
  HandlerScope();
  ~HandlerScope();
  HandlerScope(const HandlerScope&) = delete;
  HandlerScope& operator=(const HandlerScope&) = delete;
};

/// What the game is about to deal with, in words for the error box of a fault that follows: the one who reports it need
/// not know. Holds until another is noted or the outermost handler has ended.
void noteForReport(std::string what);

/// Shows the error box and ends the process with status 1. From then on no handler runs any more, so that nothing goes
/// on behind the box.
[[noreturn]] void reportFault(const char* what);
bool isFaultReported();

/// Runs game code from inside the toolkit's dispatch, through which no exception may pass: a fault ends the program.
template <class Statement>
void runHandler(Statement&& statement) {
  if (isFaultReported()) return;
  const HandlerScope scope;
  try {
    statement();
  } catch (const std::exception& fault) {
    reportFault(fault.what());
  }
}

/// False on a form that has been unloaded: it stays in memory for a while but takes no events.
bool takesEvents(Control& control);

/// Raises one event of a control, if anybody handles it. Works on a copy, since a handler may replace itself.
template <class... Arguments, class... Values>
void raiseEvent(Control& control, const std::function<void(Arguments...)>& event, Values... values) {
  if (!event || !takesEvents(control)) return;
  runHandler([handler = event, values...] { handler(values...); });
}

}  // namespace kelvora
