#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <functional>
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

/// Copies a list of the system's.
template <class Entry>
std::vector<HostAddress> copyAddresses(const Entry* entry) {
  std::vector<HostAddress> copies;
  for (; entry != nullptr; entry = entry->ai_next) {
    HostAddress address{entry->ai_family, entry->ai_addrlen};
    if (address.size > address.bytes.size()) continue;
    std::memcpy(address.bytes.data(), entry->ai_addr, address.size);
    copies.push_back(address);
  }
  return copies;
}

/// Numeric hosts are converted at once. Names block, because the system asks name servers.
enum class HostKind { Numeric, Name };

/// The system's addresses of a host, in the order in which to try them. Empty if there are none.
std::vector<HostAddress> findAddresses(const std::string& host, int port, HostKind kind);

/// Runs it on a thread of its own. False if there is none.
bool runOnThread(std::function<void()> work);

/// The addresses of a host. Names are looked up on a thread, which may outlive the connection that asked.
class HostAddresses {
 public:
  /// Starts the lookup. Signals the network when it is done.
  static std::shared_ptr<HostAddresses> lookUp(const std::string& host, int port);

  bool areKnown() const { return areKnown_; }
  /// The next address to try; nothing after the last. Call it once they are known.
  std::optional<HostAddress> next();

 private:
  void tell(std::vector<HostAddress> found);

  std::vector<HostAddress> found_;
  std::size_t tried_ = 0;
  std::atomic<bool> areKnown_ = false;
};

}  // namespace kelvora
