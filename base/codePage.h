#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace kelvora {

/// The 32 positions 0x80 to 0x9F of code page 1252. The five that it leaves undefined stand for the control characters
/// of the same number, so that every byte survives the way to the screen and back.
inline constexpr std::array<char16_t, 32> codePage1252Middle = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr char16_t toUnicode(unsigned char byte) {
  return byte >= 0x80 && byte <= 0x9F ? codePage1252Middle[byte - 0x80U] : char16_t{byte};
}

/// The byte that stands for a character; nothing if the code page has no such letter.
constexpr std::optional<char> toCodePage(char32_t code) {
  if (code < 0x80 || (code > 0x9F && code <= 0xFF)) return static_cast<char>(code);
  for (std::size_t i = 0; i < codePage1252Middle.size(); ++i) {
    if (codePage1252Middle[i] == code) return static_cast<char>(0x80 + i);
  }
  return std::nullopt;
}

/// Text of a terminal or a file (UTF-8) as the bytes that go over the wire; nothing if it is not such text, or holds a
/// letter that the code page lacks.
std::optional<std::string> codePageFromUtf8(std::string_view text);

/// The way back, which every text has.
std::string utf8FromCodePage(std::string_view text);

}  // namespace kelvora
