#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace kelvora::wire {

/// Delimiters of the text protocol. Ids are single bytes above them. There is no escape.
inline constexpr char frameStart = static_cast<char>(128);
inline constexpr char frameEnd = static_cast<char>(129);
inline constexpr char fieldSeparator = static_cast<char>(130);

/// A message as it came in.
struct Incoming {
  int id = 0;
  std::string_view fields;  ///< with the separators between them
};

/// The id and the fields of a whole frame, without its start and end.
constexpr std::string_view textOf(std::string_view frame) {
  return frame.size() < 2 ? std::string_view() : frame.substr(1, frame.size() - 2);
}
/// Takes a frame's text apart. Nothing for an empty text, which has no id.
std::optional<Incoming> open(std::string_view text);

/// The fields, cut at every separator. A text without a separator is one field.
std::vector<std::string_view> splitFields(std::string_view text);
/// Cuts into exactly as many fields as there are places, at least one; false if the text has another number of fields.
bool splitFields(std::string_view text, std::span<std::string_view> fields);

}  // namespace kelvora::wire
