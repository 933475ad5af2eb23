#pragma once

#include <stdexcept>
#include <utility>

namespace kelvora {

/// A run-time fault of the game: an overflowing conversion, an index outside its bounds, text that is no number where
/// one is required. Uncaught it ends the program with an error box that shows what().
class RuntimeFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The faults by name, so that the same fault reads the same wherever it is raised.
[[noreturn]] void raiseOverflow();
[[noreturn]] void raiseSubscriptOutOfRange();
[[noreturn]] void raiseTypeMismatch();
[[noreturn]] void raiseInvalidPropertyValue();
[[noreturn]] void raiseOutOfMemory();

/// Runs one statement and swallows its fault; the caller goes on with its next statement. Other exceptions pass.
template <class Statement>
void resumeNext(Statement&& statement) {
  try {
    std::forward<Statement>(statement)();
  } catch (const RuntimeFault&) {  // nothing to do: the statement counts as skipped
  }
}

}  // namespace kelvora
