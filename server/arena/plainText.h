#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/codePage.h"
#include "protocol/wireFormat.h"

namespace kelvora::server {

/// True for ASCII control characters and for the five bytes that code page 1252 leaves undefined.
constexpr bool isControl(char c) {
  const auto code = static_cast<unsigned char>(c);
  return code < 32 || code == 127 || (code > 127 && toUnicode(code) == code && code < 160);
}

/// True for the bytes that no field of a message may contain.
constexpr bool isDelimiter(char c) { return c == wire::frameStart || c == wire::frameEnd || c == wire::fieldSeparator; }

/// For players whose request would take too much of the server.
inline constexpr const char* serverIsBusy = "The server is busy. Try again in a moment.";

/// "1 capture" or "3 captures"
inline std::string counted(std::int64_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

/// The text for the log, with question marks for everything but plain ASCII.
inline std::string printable(std::string_view text) {
  std::string line(text);
  for (char& c : line) {
    if (isControl(c) || static_cast<unsigned char>(c) > 127) c = '?';
  }
  return line;
}

}  // namespace kelvora::server
