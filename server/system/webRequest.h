#pragma once

#include <atomic>
#include <string>

namespace kelvora::server {

/// A request without a body to another web server, by http or https.
struct WebRequest {
  std::string method;
  std::string url;
  std::string key;                              ///< the bearer token; empty for none
  std::string agent;                            ///< this program and its version
  long timeLimit = 0;                           ///< ms, for all of it
  const std::atomic<bool>* isEnding = nullptr;  ///< aborts the request when it becomes true; null for never
};

struct WebReply {
  static constexpr std::size_t maxBody = 200;  ///< bytes; the rest is dropped

  std::string error;  ///< why there is no reply; empty if there is one
  long status = 0;
  std::string body;
};

/// Sends the request and waits for the reply. Any thread may call it.
WebReply sendRequest(const WebRequest& request);

}  // namespace kelvora::server
