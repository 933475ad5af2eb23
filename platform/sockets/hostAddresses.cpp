#include "platform/sockets/hostAddresses.h"

#include <utility>

#include "platform/sockets/networkSignal.h"

namespace kelvora {

std::shared_ptr<HostAddresses> HostAddresses::lookUp(const std::string& host, int port) {
  auto addresses = std::make_shared<HostAddresses>();
  std::vector<HostAddress> numeric = findAddresses(host, port, HostKind::Numeric);
  // To some systems, an empty name is the machine itself.
  if (!numeric.empty() || host.empty()) {
    addresses->tell(std::move(numeric));
    return addresses;
  }
  const bool isStarted =
      runOnThread([addresses, host, port] { addresses->tell(findAddresses(host, port, HostKind::Name)); });
  if (!isStarted) addresses->tell({});
  return addresses;
}

void HostAddresses::tell(std::vector<HostAddress> found) {
  found_ = std::move(found);
  areKnown_ = true;
  signalNetwork();
}

std::optional<HostAddress> HostAddresses::next() {
  if (tried_ == found_.size()) return std::nullopt;
  return found_[tried_++];
}

}  // namespace kelvora
