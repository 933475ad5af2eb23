#include "base/millis.h"

#include <chrono>

namespace kelvora {

Millis steadyNow() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

}  // namespace kelvora
