#include "server/net/origin.h"

#include <algorithm>
#include <cctype>

#include "base/text.h"

namespace kelvora::server {

namespace {

bool equalsIgnoringCase(std::string_view one, std::string_view other) {
  return std::ranges::equal(one, other,
                            [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); });
}

}  // namespace

bool isOriginAllowed(std::string_view origin, std::string_view host, std::string_view allowed) {
  if (origin.empty()) return true;
  const std::size_t scheme = origin.find("://");
  if (scheme != std::string_view::npos && !host.empty() && equalsIgnoringCase(origin.substr(scheme + 3), host))
    return true;
  while (!allowed.empty()) {
    const std::size_t comma = std::min(allowed.find(','), allowed.size());
    std::string entry = trimBlanks(allowed.substr(0, comma));
    if (entry.ends_with('/')) entry.pop_back();
    if (entry == "*" || equalsIgnoringCase(entry, origin)) return true;
    allowed.remove_prefix(std::min(comma + 1, allowed.size()));
  }
  return false;
}

}  // namespace kelvora::server
