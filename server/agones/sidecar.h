#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "server/agones/place.h"

namespace kelvora::server {

/// Reports this server's state to Agones, which runs many servers on a cluster, by the HTTP interface of the container
/// that it puts beside each server. Works on its own thread, at the times of SidecarPlan.
class Sidecar {
 public:
  static constexpr const char* portVariable = "AGONES_SDK_HTTP_PORT";  ///< in the environment of Agones' servers

  /// Both are called on the sidecar's thread.
  struct Handlers {
    /// Called with a line when Agones learns something or can't be told.
    std::function<void(const std::string& line)> log;
    /// Called once, when Agones has told where players reach this server.
    std::function<void(const Place& place)> onPlace;
  };

  Sidecar(std::uint16_t port, const std::string& version, Handlers handlers);
  /// After `finish`, waits at most three seconds until Agones knows.
  ~Sidecar();
  Sidecar(const Sidecar&) = delete;
  Sidecar& operator=(const Sidecar&) = delete;

  /// The server works, and this many people play. Call this at least every few seconds. Nothing is told before.
  void update(std::size_t players);
  /// Starts to tell that the server is about to end, without waiting. Agones then removes it.
  void finish();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace kelvora::server
