#include "server/net/origin.h"

#include <algorithm>
#include <cctype>
#include <string>

#include "server/config/commaList.h"

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
  for (std::string_view entry : commaList(allowed)) {
    if (entry.ends_with('/')) entry.remove_suffix(1);
    if (entry == "*" || equalsIgnoringCase(entry, origin)) return true;
  }
  return false;
}

}  // namespace kelvora::server
