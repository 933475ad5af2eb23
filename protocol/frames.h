#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include "base/numberFromText.h"
#include "base/text.h"
#include "protocol/messages.h"
#include "protocol/wireFormat.h"

/// Builds and reads frames according to the table of messages. Building one with the wrong number or types of fields
/// doesn't compile.
namespace kelvora::wire {

/// The text of a number, forwarded unchanged and unchecked.
struct NumberText {
  std::string_view text;
};

/// A number and the text that it was read from, which points into the message.
struct Number {
  double value = 0;
  std::string_view text;
};

/// A whole number, or an enum that stands for one.
template <class Value>
concept WholeNumber = std::integral<Value> ||(std::is_enum_v<Value>&& std::is_convertible_v<Value, int>);

/// True if a field of this type can be written from a `Value`.
template <class Value>
constexpr bool canHold(FieldType type) {
  switch (type) {
    case FieldType::int16:
    case FieldType::int32:
      return WholeNumber<Value>;
    case FieldType::single:
      return std::same_as<Value, float> || std::same_as<Value, NumberText>;
    case FieldType::real:
      return std::integral<Value> || std::same_as<Value, double>;
    case FieldType::text:
      return std::convertible_to<const Value&, std::string_view>;
  }
  return false;
}

/// Appends the text of a field's value.
inline void append(std::string& frame, NumberText number) { frame += number.text; }
inline void append(std::string& frame, std::string_view text) { frame += text; }
template <WholeNumber Value>
void append(std::string& frame, Value number) {
  frame += std::to_string(number);
}
template <std::floating_point Value>
void append(std::string& frame, Value number) {
  frame += numberText(number);
}

/// Builds one frame from the values of its fields in their order. Texts aren't escaped, and whole numbers aren't
/// checked against the field's range.
template <Direction direction, MessageId id, class... Values>
std::string buildFrame(const Values&... values) {
  static constexpr std::span<const Field> fields = fieldsOf(direction, id);
  static_assert(sizeof...(values) == fields.size(), "wrong number of fields for this message");
  [[maybe_unused]] constexpr auto fit = []<std::size_t... i>(std::index_sequence<i...>) {
    return (canHold<Values>(fields[i].type) && ...);
  };
  static_assert(fit(std::index_sequence_for<Values...>()), "wrong type for a field of this message");
  std::string frame{frameStart, static_cast<char>(id)};
  frame.reserve(48);
  // Quirk Q-060: fields aren't escaped. A name or password that contains a delimiter breaks its frame.
  ((append(frame, values), frame += fieldSeparator), ...);
  if constexpr (sizeof...(values) > 0) frame.pop_back();
  return frame += frameEnd;
}

/// Builds a client's frame.
template <MessageId id, class... Values>
std::string toServer(const Values&... values) {
  return buildFrame<Direction::toServer, id>(values...);
}
/// Builds a server's frame.
template <MessageId id, class... Values>
std::string toClient(const Values&... values) {
  return buildFrame<Direction::toClient, id>(values...);
}

/// The value of a field: a number, a Number for floating-point types, or a view of the text. Nothing unless the whole
/// field is one number of its type. Both floating-point types are read as doubles.
template <FieldType type>
auto readField(std::string_view text) {
  if constexpr (type == FieldType::int16) {
    return numberFromText<std::int16_t>(text);
  } else if constexpr (type == FieldType::int32) {
    return numberFromText<std::int32_t>(text);
  } else if constexpr (type == FieldType::text) {
    return std::optional(text);
  } else {
    const auto value = numberFromText<double>(text);
    return value ? std::optional(Number{*value, text}) : std::nullopt;
  }
}

/// The texts of a message's fields, which point into `text`. Nothing if there are more or fewer than in the table. Not
/// for messages without fields.
template <Direction direction, MessageId id>
auto readTexts(std::string_view text) {
  std::array<std::string_view, fieldsOf(direction, id).size()> fields;
  return splitFields(text, fields) ? std::optional(fields) : std::nullopt;
}

/// The values of a message's fields as a tuple. Nothing unless the number of fields is right and each one is of its
/// type. Texts point into `text`. Not for messages without fields. The server and its bots read this way. The game's
/// client is more lenient: see MessageFields.
template <Direction direction, MessageId id>
auto readMessage(std::string_view text) {
  static constexpr std::span<const Field> fields = fieldsOf(direction, id);
  const auto read = [&]<std::size_t... i>(std::index_sequence<i...>) {
    using Values = std::tuple<typename decltype(readField<fields[i].type>({}))::value_type...>;
    const auto texts = readTexts<direction, id>(text);
    if (!texts) return std::optional<Values>();
    const std::tuple values(readField<fields[i].type>((*texts)[i])...);
    if (!(std::get<i>(values) && ...)) return std::optional<Values>();
    return std::optional<Values>(std::in_place, *std::get<i>(values)...);
  };
  return read(std::make_index_sequence<fields.size()>());
}

/// Reads a client's message.
template <MessageId id>
auto fromClient(std::string_view fields) {
  return readMessage<Direction::toServer, id>(fields);
}
/// Reads a server's message.
template <MessageId id>
auto fromServer(std::string_view fields) {
  return readMessage<Direction::toClient, id>(fields);
}

}  // namespace kelvora::wire
