#include "protocol/wireFormat.h"

namespace kelvora::wire {

namespace {

/// Takes the first field off a text; nothing is left behind the last one.
std::string_view takeField(std::optional<std::string_view>& text) {
  const std::size_t end = text->find(fieldSeparator);
  const std::string_view field = text->substr(0, end);
  if (end == std::string_view::npos) {
    text.reset();
  } else {
    text->remove_prefix(end + 1);
  }
  return field;
}

}  // namespace

std::optional<Incoming> open(std::string_view text) {
  if (text.empty()) return std::nullopt;
  return Incoming{static_cast<unsigned char>(text.front()), text.substr(1)};
}

std::vector<std::string_view> splitFields(std::string_view text) {
  std::vector<std::string_view> fields;
  for (std::optional rest = text; rest;) fields.push_back(takeField(rest));
  return fields;
}

bool splitFields(std::string_view text, std::span<std::string_view> fields) {
  std::optional rest = text;
  for (std::string_view& field : fields) {
    if (!rest) return false;
    field = takeField(rest);
  }
  return !rest;
}

}  // namespace kelvora::wire
