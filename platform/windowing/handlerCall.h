#pragma once

#include <exception>
#include <functional>

#include "platform/windowing/faultReport.h"

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

/// Raises KeyPress with this byte. A command of the game that Enter ends is noted for the report of a fault.
void raiseKeyPress(Control& control, int byte);

}  // namespace kelvora
