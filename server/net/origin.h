#pragma once

#include <string_view>

namespace kelvora::server {

/// True if a page may open a WebSocket here. `origin` is the page's, "https://host:port", or empty for clients other
/// than browsers, which are always allowed. `host` is the request's Host header, the browser's name for this server.
/// `allowed` lists origins separated by commas; "*" is any. Pages from this server are always allowed.
bool isOriginAllowed(std::string_view origin, std::string_view host, std::string_view allowed);

}  // namespace kelvora::server
