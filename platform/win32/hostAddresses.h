#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kelvora {

struct HostAddress {
  int family = 0;
  std::size_t size = 0;
  std::array<std::byte, 128> bytes{};  ///< as the system's sockets take it
};

/// The addresses of a host, looked up on a system thread.
class HostAddresses {
 public:
  /// Starts the lookup. Signals networkSignal() when it is done.
  static std::shared_ptr<HostAddresses> lookUp(const std::string& host, int port);

  bool areKnown() const { return areKnown_; }
  /// Blocks. Called on the lookup's thread.
  void find(const std::string& host, int port);
  /// The next address to try; nothing after the last. Call it once they are known.
  std::optional<HostAddress> next();

 private:
  void search(const std::string& host, int port);

  std::vector<HostAddress> found_;
  std::size_t tried_ = 0;
  std::atomic<bool> areKnown_ = false;
};

}  // namespace kelvora
