#pragma once

#include <functional>
#include <memory>
#include <string>

#include "server/lists/hostList.h"

namespace kelvora::server {

/// Announces this server to a list on another host by HTTP, on a thread of its own, at the times of PublishSchedule.
class Publisher {
 public:
  /// `url` is that of the list's host, "http://lists.example:8080"; the key, if the list asks for one, goes along with
  /// each request. `log` is called on the publisher's thread, when an announcement is the first to succeed or to fail.
  Publisher(const std::string& url, std::string key, std::string version, std::function<void(const std::string&)> log);
  /// Takes the announcement back, and waits for that for three seconds at most.
  ~Publisher();
  Publisher(const Publisher&) = delete;
  Publisher& operator=(const Publisher&) = delete;

  /// What the list is to say from now on. Nothing is announced before the first call.
  void publish(HostEntry host);
  /// Begins to take the announcement back, without waiting.
  void signOff();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace kelvora::server
