#pragma once

#include <functional>
#include <memory>
#include <string>

#include "server/lists/hostList.h"

namespace kelvora::server {

/// Announces this server to a list on another host by HTTP, on its own thread, at the times of PublishSchedule.
class Publisher {
 public:
  /// `url` is the list's host, "http://lists.example:8080". The key, if not empty, is sent with each request. `log` is
  /// called on the publisher's thread when announcements start to succeed or to fail.
  Publisher(const std::string& url, std::string key, std::string version, std::function<void(const std::string&)> log);
  /// Withdraws the announcement and waits at most three seconds for that.
  ~Publisher();
  Publisher(const Publisher&) = delete;
  Publisher& operator=(const Publisher&) = delete;

  /// Sets what to announce from now on. Nothing is announced before the first call.
  void publish(HostEntry host);
  /// Starts to withdraw the announcement without waiting.
  void signOff();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace kelvora::server
