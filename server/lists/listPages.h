#pragma once

#include <optional>
#include <string>

#include "server/http/http.h"
#include "server/lists/hostList.h"
#include "server/lists/hostRegistry.h"

namespace kelvora::server {

/// The sender of a request.
struct Requester {
  std::string address;     ///< as a list shows it
  std::string network;     ///< the one that limits apply to
  bool isTrusted = false;  ///< may announce any number of servers
};

/// Serves the list of published games, to the game and to browsers, and the update file, and accepts other servers'
/// announcements.
class ListPages {
 public:
  /// Announcements need the key, unless it is empty. The game's list shows `ownAddress` for this server's entry if that
  /// has none.
  ListPages(std::string version, std::string key, std::string ownAddress = {},
            std::size_t maxHosts = HostRegistry::usualMaxHosts)
      : version_(std::move(version)), key_(std::move(key)), ownAddress_(std::move(ownAddress)), registry_(maxHosts) {}

  /// Sets this server's own entry, or removes it. Browsers play it where they got the page if it has no address.
  void setOwnEntry(std::optional<HostEntry> host) { host_ = std::move(host); }
  /// True if this class answers the path.
  static bool has(std::string_view path);
  /// Answers a request whose path `has` accepts. Refusals are answers with an error status.
  HttpAnswer answer(const HttpRequest& request, const Requester& requester, Millis now);

 private:
  HttpAnswer listing(const HostQuery& query, Millis now);
  HttpAnswer table(Millis now);
  HttpAnswer announce(const HttpRequest& request, const Requester& requester, Millis now);

  const std::string version_;
  const std::string key_;
  const std::string ownAddress_;
  std::optional<HostEntry> host_;
  HostRegistry registry_;
};

}  // namespace kelvora::server
