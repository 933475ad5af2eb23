#pragma once

#include <stdexcept>
#include <utility>

namespace kelvora {

/// A run-time fault of the game: an overflowing conversion, an index out of bounds, text where a number is required. If
/// nothing catches it, it ends the program with an error box that shows what().
class RuntimeFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// One function per fault, so that the same fault always has the same message.
[[noreturn]] void raiseOverflow();
[[noreturn]] void raiseSubscriptOutOfRange();
[[noreturn]] void raiseTypeMismatch();
[[noreturn]] void raiseInvalidPropertyValue();
[[noreturn]] void raiseOutOfMemory();

/// Runs one statement and swallows its fault. Other exceptions pass through.
template <class Statement>
void resumeNext(Statement&& statement) {
  try {
    std::forward<Statement>(statement)();
  } catch (const RuntimeFault&) {  // the statement counts as skipped
  }
}

}  // namespace kelvora
