#pragma once

#include <string>
#include <string_view>

#include "base/codePage.h"

namespace kelvora::server {

/// No letter of code page 1252: the control characters of ASCII, and the five bytes that the page leaves undefined.
constexpr bool isControl(char c) {
  const auto code = static_cast<unsigned char>(c);
  return code < 32 || code == 127 || (code > 127 && toUnicode(code) == code && code < 160);
}

/// For the log: what is not plain ASCII is a question mark.
inline std::string printable(std::string_view text) {
  std::string line(text);
  for (char& c : line) {
    if (isControl(c) || static_cast<unsigned char>(c) > 127) c = '?';
  }
  return line;
}

}  // namespace kelvora::server
