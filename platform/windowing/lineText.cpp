#include "platform/windowing/lineText.h"

namespace kelvora {

std::string cleanLine(std::string_view text) {
  std::string line;
  bool isBroken = false;
  for (const char byte : text) {
    isBroken = isBroken || byte == '\n' || byte == '\t';
    if (static_cast<unsigned char>(byte) < 32) continue;
    if (isBroken && !line.empty()) line += ' ';
    isBroken = false;
    line += byte;
  }
  return line;
}

}  // namespace kelvora
