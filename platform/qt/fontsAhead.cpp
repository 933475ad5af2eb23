#include "platform/qt/fontsAhead.h"

#include <fontconfig/fontconfig.h>

#include <clocale>
#include <system_error>

namespace kelvora {

FontsAhead::FontsAhead() {
  // The toolkit sets the locale, by which the thread reads numbers. Set already, it does not change in between.
  std::setlocale(LC_ALL, "");
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
