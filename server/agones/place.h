#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kelvora::server {

/// Where players reach a server of a cluster: usually not at its own port.
struct Place {
  std::string address;
  std::uint16_t port = 0;

  bool operator==(const Place&) const = default;
};

/// The place in Agones' description of a server, which is JSON: `status.address`, and the first of `status.ports`.
/// Nothing if it has none yet.
std::optional<Place> readPlace(const std::string& description);

}  // namespace kelvora::server
