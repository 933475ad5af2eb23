#include "server/config/addressList.h"

#include <algorithm>

#include "base/numberFromText.h"
#include "server/config/commaList.h"
#include "server/moderation/network.h"

namespace kelvora::server {

namespace asio = boost::asio;

namespace {

/// True if the first `bits` bits are the same.
template <class Bytes>
bool beginAlike(const Bytes& one, const Bytes& other, std::size_t bits) {
  const std::size_t whole = bits / 8;
  if (!std::equal(one.begin(), one.begin() + whole, other.begin())) return false;
  return bits % 8 == 0 || (one[whole] ^ other[whole]) >> (8 - bits % 8) == 0;
}

}  // namespace

std::optional<AddressList> AddressList::read(const std::string& text) {
  AddressList list;
  for (const std::string& entry : commaList(text)) {
    if (entry == "*") {
      list.hasAll_ = true;
      continue;
    }
    const std::size_t slash = std::min(entry.find('/'), entry.size());
    boost::system::error_code error;
    const auto address = unmapped(asio::ip::make_address(entry.substr(0, slash), error));
    const std::size_t allBits = address.is_v4() ? 32 : 128;
    const auto bits =
        slash < entry.size() ? numberFromText<std::size_t>(entry.substr(slash + 1)) : std::optional(allBits);
    if (error || !bits || *bits > allBits) return std::nullopt;
    list.networks_.push_back({address, *bits});
  }
  return list;
}

bool AddressList::has(const asio::ip::address& address) const {
  const auto sought = unmapped(address);
  return hasAll_ || std::ranges::any_of(networks_, [&](const Network& network) {
           if (network.address.is_v4() != sought.is_v4()) return false;
           return sought.is_v4()
                      ? beginAlike(sought.to_v4().to_bytes(), network.address.to_v4().to_bytes(), network.bits)
                      : beginAlike(sought.to_v6().to_bytes(), network.address.to_v6().to_bytes(), network.bits);
         });
}

}  // namespace kelvora::server
