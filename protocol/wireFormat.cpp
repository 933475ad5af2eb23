#include "protocol/wireFormat.h"

namespace kelvora::wire {

std::optional<Incoming> splitId(std::string_view text) {
  if (text.empty()) return std::nullopt;
  return Incoming{MessageId{static_cast<unsigned char>(text.front())}, text.substr(1)};
}

std::vector<std::string_view> splitFields(std::string_view text) {
  std::vector<std::string_view> fields;
  for (;;) {
    const std::size_t end = text.find(fieldSeparator);
    fields.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return fields;
    text.remove_prefix(end + 1);
  }
}

bool splitFields(std::string_view text, std::span<std::string_view> fields) {
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const std::size_t end = text.find(fieldSeparator);
    fields[i] = text.substr(0, end);
    if (end == std::string_view::npos) return i + 1 == fields.size();
    text.remove_prefix(end + 1);
  }
  return false;
}

}  // namespace kelvora::wire
