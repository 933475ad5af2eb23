#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace kelvora {

/// The 32 positions 0x80 to 0x9F of code page 1252. The five undefined ones map to the control characters with the same
/// number, so that every byte survives a round trip.
inline constexpr std::array<char16_t, 32> codePage1252Middle = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

/// The character for a byte of code page 1252.
constexpr char16_t toUnicode(unsigned char byte) {
  return byte >= 0x80 && byte <= 0x9F ? codePage1252Middle[byte - 0x80U] : char16_t{byte};
}

/// The byte for a character, or nothing if the code page lacks it.
constexpr std::optional<char> toCodePage(char32_t code) {
  if (code < 0x80 || (code > 0x9F && code <= 0xFF)) return static_cast<char>(code);
  for (std::size_t i = 0; i < codePage1252Middle.size(); ++i) {
    if (codePage1252Middle[i] == code) return static_cast<char>(0x80 + i);
  }
  return std::nullopt;
}

/// Converts UTF-8, as in terminals and files, to the bytes sent over the wire. Returns nothing if the text is not UTF-8
/// or contains a character that the code page lacks.
std::optional<std::string> codePageFromUtf8(std::string_view text);

/// Converts code page 1252 to UTF-8. Always succeeds.
std::string utf8FromCodePage(std::string_view text);

}  // namespace kelvora
