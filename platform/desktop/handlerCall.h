#pragma once

#include <exception>
#include <functional>
#include <string>

namespace kelvora {

class Control;

/// DoEvents processes all pending events, but not for longer than this if more keep coming.
inline constexpr int maxServiceTime = 10;  // ms
/// DoEvents does nothing in handlers that are nested deeper than this: a held key would overflow the stack. The game's
/// 16 message boxes need two levels each.
inline constexpr int maxServiceDepth = 40;

/// The number of nested game handlers, message boxes and event loops.
int handlerDepth();

/// Adds one level to handlerDepth while it exists.
class HandlerScope {
 public:
  HandlerScope();
  ~HandlerScope();
  HandlerScope(const HandlerScope&) = delete;
  HandlerScope& operator=(const HandlerScope&) = delete;
};

/// Records what the game is about to do, for the error box of a subsequent fault. Valid until the next note or until
/// the outermost handler ends.
void noteForReport(std::string what);

/// Names the file with the game's recording, for the error box of a fault.
void nameRecording(std::string file);

/// Shows the error box and ends the process with status 1. No handler runs any more while the box is open.
[[noreturn]] void reportFault(const char* what);
/// True once `reportFault` has been called.
bool isFaultReported();

/// Shows an error and what the user can do about it, until the box is closed.
using FaultBox = void(const std::string& error, const std::string& advice);
/// Sets the backend's error box.
void setFaultBox(FaultBox* box);

/// Runs game code inside the backend's dispatch, which exceptions must not cross. A fault ends the program.
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

/// Runs the game until it ends. A fault ends the program.
void runGame(void (*game)());

/// False on an unloaded form, which stays in memory for a while but takes no events.
bool takesEvents(Control& control);

/// Raises one event of a control, if it has a handler. Calls a copy, because a handler may replace itself.
template <class... Arguments, class... Values>
void raiseEvent(Control& control, const std::function<void(Arguments...)>& event, Values... values) {
  if (!event || !takesEvents(control)) return;
  runHandler([handler = event, values...] { handler(values...); });
}

/// Clicks the form's last visible default button (Enter) or cancel button (Esc). False if it has none.
bool answerKey(Control& form, bool enter);

}  // namespace kelvora
