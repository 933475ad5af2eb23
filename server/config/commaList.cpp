#include "server/config/commaList.h"

#include <algorithm>

#include "base/text.h"

namespace kelvora::server {

std::vector<std::string> commaList(std::string_view text) {
  std::vector<std::string> entries;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(','), text.size());
    entries.push_back(trimBlanks(text.substr(0, end)));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return entries;
}

}  // namespace kelvora::server
