#pragma once

#include <string>

#include "server/lists/hostList.h"
#include "server/lists/hostRegistry.h"
#include "server/web/http.h"

namespace kelvora::server {

/// Where a request comes from.
struct Peer {
  std::string address;  ///< as a list gives it
  std::string network;  ///< that limits apply to
};

/// The list of published games and the update file. It takes the announcements of other servers, too.
class ListPages {
 public:
  /// Announcements need the key, unless it is empty.
  ListPages(std::string version, std::string key) : version_(std::move(version)), key_(std::move(key)) {}

  /// What the list says of this server from now on.
  void publish(HostEntry host) { host_ = std::move(host); }
  const HostEntry& host() const { return host_; }
  /// True for a path that is answered here.
  static bool has(std::string_view path);
  HttpAnswer answer(const HttpRequest& request, const Peer& peer, Millis now);

 private:
  HttpAnswer announce(const HttpRequest& request, const Peer& peer, Millis now);

  const std::string version_;
  const std::string key_;
  HostEntry host_;
  HostRegistry registry_;
};

/// "Only GET is served here.", with the methods that are allowed.
HttpAnswer methodNotAllowed(const std::string& methods, const std::string& text);

}  // namespace kelvora::server
