#include "platform/win32/hostAddresses.h"

#include <cstring>

#include "platform/win32/messagePump.h"
#include "platform/win32/wideText.h"
#include "platform/win32/win32.h"
// After the above.
#include <ws2tcpip.h>

namespace kelvora {

namespace {

struct Search {
  std::shared_ptr<HostAddresses> addresses;
  std::string host;
  int port;
};

void CALLBACK runSearch(PTP_CALLBACK_INSTANCE, void* context) {
  const std::unique_ptr<Search> search(static_cast<Search*>(context));
  search->addresses->find(search->host, search->port);
  SetEvent(networkSignal());
}

}  // namespace

std::shared_ptr<HostAddresses> HostAddresses::lookUp(const std::string& host, int port) {
  auto addresses = std::make_shared<HostAddresses>();
  auto search = std::make_unique<Search>(Search{addresses, host, port});
  if (TrySubmitThreadpoolCallback(runSearch, search.get(), nullptr) != FALSE) {
    search.release();
  } else {
    addresses->areKnown_ = true;
  }
  return addresses;
}

void HostAddresses::find(const std::string& host, int port) {
  search(host, port);
  areKnown_ = true;
}

void HostAddresses::search(const std::string& host, int port) {
  ADDRINFOW wanted{};
  wanted.ai_family = AF_UNSPEC;
  wanted.ai_socktype = SOCK_STREAM;
  ADDRINFOW* list = nullptr;
  if (GetAddrInfoW(toWide(host).c_str(), std::to_wstring(port).c_str(), &wanted, &list) != 0) return;
  for (const ADDRINFOW* entry = list; entry != nullptr; entry = entry->ai_next) {
    HostAddress address;
    if (entry->ai_addrlen > address.bytes.size()) continue;
    address.family = entry->ai_family;
    address.size = entry->ai_addrlen;
    std::memcpy(address.bytes.data(), entry->ai_addr, entry->ai_addrlen);
    found_.push_back(address);
  }
  FreeAddrInfoW(list);
}

std::optional<HostAddress> HostAddresses::next() {
  if (tried_ == found_.size()) return std::nullopt;
  return found_[tried_++];
}

}  // namespace kelvora
