#include "server/agones/place.h"

#include <boost/property_tree/json_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <sstream>
#include <utility>

namespace kelvora::server {

namespace {

constexpr long maxNesting = 32;  // the parser calls itself

bool isDeep(const std::string& json) {
  long depth = 0;
  for (const char c : json) {
    if (c == '{' || c == '[') ++depth;
    if (c == '}' || c == ']') --depth;
    if (depth > maxNesting) return true;
  }
  return false;
}

}  // namespace

std::optional<Place> readPlace(const std::string& description) {
  if (isDeep(description)) return std::nullopt;
  namespace tree = boost::property_tree;
  try {
    tree::ptree root;
    std::istringstream text(description);
    tree::read_json(text, root);
    const tree::ptree& status = root.get_child("status");
    const tree::ptree& ports = status.get_child("ports");
    if (ports.empty()) return std::nullopt;
    Place place{status.get<std::string>("address"), ports.front().second.get<std::uint16_t>("port")};
    return place.address.empty() || place.port == 0 ? std::nullopt : std::optional(std::move(place));
  } catch (const tree::ptree_error&) {
    return std::nullopt;
  }
}

}  // namespace kelvora::server
