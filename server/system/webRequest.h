#pragma once

#include <atomic>
#include <cstddef>
#include <string>

#include "base/outcome.h"

namespace kelvora::server {

/// A request to another web server, by http or https.
struct WebRequest {
  std::string method;
  std::string url;
  std::string key{};                            ///< the bearer token; empty for none
  std::string json{};                           ///< the body; empty for none
  std::string agent;                            ///< this program and its version
  long timeLimit;                               ///< ms, above 0, for all of it
  bool usesProxy = true;                        ///< the one that this machine is set up for, if any
  std::size_t maxReply = 200;                   ///< bytes of the reply's body; the rest is dropped
  const std::atomic<bool>* isEnding = nullptr;  ///< aborts the request when it becomes true; null for never
};

struct WebReply {
  long status = 0;
  std::string body;
};

/// Sends the request and waits for the reply. Refused with the reason if there is none. Any thread may call it.
Outcome sendRequest(const WebRequest& request, WebReply& reply);

}  // namespace kelvora::server
