#pragma once

#include <string_view>

namespace kelvora::server {

/// Whether a page may open a WebSocket here. `origin` is the page's, "https://host:port", empty for clients that are
/// not browsers: these may. `host` is what the browser calls this server. `allowed` lists origins between commas; "*"
/// is any, and pages that this server delivered are always allowed.
bool isOriginAllowed(std::string_view origin, std::string_view host, std::string_view allowed);

}  // namespace kelvora::server
