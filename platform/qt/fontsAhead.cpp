#include "platform/qt/fontsAhead.h"

#include <fontconfig/fontconfig.h>

#include <system_error>

namespace kelvora {

FontsAhead::FontsAhead() {
  try {
    thread_ = std::thread([] { FcInit(); });
  } catch (const std::system_error&) {
    return;
  }
}

FontsAhead::~FontsAhead() {
  if (thread_.joinable()) thread_.join();
}

}  // namespace kelvora
