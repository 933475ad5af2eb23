#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "protocol/wireFormat.h"

namespace kelvora {

/// One message on the wire.
struct WireMessage {
  std::int16_t id = 0;
  std::vector<std::string> fields;

  friend bool operator==(const WireMessage&, const WireMessage&) = default;
};

inline void PrintTo(const WireMessage& message, std::ostream* out) {
  *out << "message " << message.id << " (";
  for (const std::string& field : message.fields) *out << '"' << field << "\" ";
  *out << ")";
}

// Builds and parses frames independently of the program's code, so that tests can find its mistakes.

/// The text of a frame, with any id and any fields, without start and end.
inline std::string textOf(std::int16_t id, const std::vector<std::string>& fields) {
  std::string text(1, static_cast<char>(id));
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i > 0) text += wire::fieldSeparator;
    text += fields[i];
  }
  return text;
}
/// The same with start and end.
inline std::string frameOf(std::int16_t id, const std::vector<std::string>& fields) {
  return wire::frameStart + textOf(id, fields) + wire::frameEnd;
}

/// Parses one frame. Fails the test if the text isn't one. A message without fields has one empty field.
inline WireMessage messageOf(std::string_view frame) {
  if (frame.size() < 3 || frame.front() != wire::frameStart || frame.back() != wire::frameEnd) {
    ADD_FAILURE() << "not a frame: " << frame;
    return {};
  }
  WireMessage message{static_cast<unsigned char>(frame[1]), {}};
  std::string_view text = frame.substr(2, frame.size() - 3);
  for (std::size_t at; (at = text.find(wire::fieldSeparator)) != std::string_view::npos; text.remove_prefix(at + 1)) {
    message.fields.emplace_back(text.substr(0, at));
  }
  message.fields.emplace_back(text);
  return message;
}
/// Parses consecutive whole frames. Fails the test if there are bytes outside them.
inline std::vector<WireMessage> parseFrames(std::string_view bytes) {
  std::vector<WireMessage> messages;
  while (!bytes.empty()) {
    const std::size_t end = std::min(bytes.find(wire::frameEnd), bytes.size() - 1);
    messages.push_back(messageOf(bytes.substr(0, end + 1)));
    bytes.remove_prefix(end + 1);
  }
  return messages;
}

}  // namespace kelvora
