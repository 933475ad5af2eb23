#include "server/net/addressList.h"

#include <algorithm>
#include <optional>
#include <stdexcept>

#include "base/numberFromText.h"
#include "server/config/commaList.h"
#include "server/moderation/network.h"
#include "server/net/asio.h"

namespace kelvora::server {

namespace {

std::string refusal(const std::string& option, const std::string& entry) {
  return option + " must have IP addresses, not \"" + entry + "\"";
}

/// True if the first `bits` bits are the same.
template <class Bytes>
bool beginAlike(const Bytes& one, const Bytes& other, std::size_t bits) {
  const std::size_t whole = bits / 8;
  if (!std::equal(one.begin(), one.begin() + whole, other.begin())) return false;
  return bits % 8 == 0 || (one[whole] ^ other[whole]) >> (8 - bits % 8) == 0;
}

}  // namespace

AddressList::AddressList(const std::string& option, const std::string& text) {
  for (const std::string& entry : commaList(text)) {
    if (entry == "*") {
      hasAll_ = true;
      continue;
    }
    const std::size_t slash = std::min(entry.find('/'), entry.size());
    boost::system::error_code error;
    const auto address = unmapped(asio::ip::make_address(entry.substr(0, slash), error));
    const std::size_t allBits = address.is_v4() ? 32 : 128;
    const auto bits =
        slash < entry.size() ? numberFromText<std::size_t>(entry.substr(slash + 1)) : std::optional(allBits);
    if (error || !bits || *bits > allBits) throw std::runtime_error(refusal(option, entry));
    networks_.push_back({address, *bits});
  }
}

bool AddressList::has(const boost::asio::ip::address& address) const {
  const auto sought = unmapped(address);
  return hasAll_ || std::ranges::any_of(networks_, [&](const Network& network) {
           if (network.address.is_v4() != sought.is_v4()) return false;
           return sought.is_v4()
                      ? beginAlike(sought.to_v4().to_bytes(), network.address.to_v4().to_bytes(), network.bits)
                      : beginAlike(sought.to_v6().to_bytes(), network.address.to_v6().to_bytes(), network.bits);
         });
}

}  // namespace kelvora::server
