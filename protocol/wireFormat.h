#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "protocol/messages.h"

namespace kelvora::wire {

/// Delimiters of the text protocol. Ids are single bytes above them. There is no escape.
inline constexpr char frameStart = static_cast<char>(128);
inline constexpr char frameEnd = static_cast<char>(129);
inline constexpr char fieldSeparator = static_cast<char>(130);

/// A received message. Its fields point into the frame.
struct Incoming {
  MessageId id{};           ///< any byte: the sender may have sent an unknown one
  std::string_view fields;  ///< with the separators between them
};

/// The text (id and fields) of a whole frame, without its start and end; empty if the frame is too short.
constexpr std::string_view textOf(std::string_view frame) {
  return frame.size() < 2 ? std::string_view() : frame.substr(1, frame.size() - 2);
}
/// Splits a frame's text into id and fields. Nothing for an empty text, which has no id.
std::optional<Incoming> splitId(std::string_view text);

/// Splits the fields at every separator. A text without a separator is one field. The results point into `text`.
std::vector<std::string_view> splitFields(std::string_view text);
/// The same into `fields`. False if the text doesn't have exactly that many fields, or `fields` is empty.
[[nodiscard]] bool splitFields(std::string_view text, std::span<std::string_view> fields);

}  // namespace kelvora::wire
