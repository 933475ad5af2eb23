#include "base/codePage.h"

namespace kelvora {

std::optional<std::string> codePageFromUtf8(std::string_view text) {
  std::string result;
  std::size_t i = 0;
  while (i < text.size()) {
    const auto lead = static_cast<unsigned char>(text[i++]);
    // Every character of the code page takes one to three bytes. A lead byte that is a continuation or starts a longer
    // sequence is invalid.
    const std::size_t more = lead < 0x80 ? 0 : lead < 0xE0 ? 1 : 2;
    if ((lead >= 0x80 && lead < 0xC0) || lead >= 0xF0 || text.size() - i < more) return std::nullopt;
    char32_t code = more == 0 ? lead : lead & (more == 1 ? 0x1FU : 0x0FU);
    for (std::size_t n = 0; n < more; ++n) {
      const auto next = static_cast<unsigned char>(text[i++]);
      if ((next & 0xC0U) != 0x80) return std::nullopt;
      code = code << 6U | (next & 0x3FU);
    }
    const bool isShortest = more == 0 || code >= (more == 1 ? 0x80U : 0x800U);
    const std::optional<char> byte = toCodePage(code);
    if (!isShortest || !byte) return std::nullopt;
    result += *byte;
  }
  return result;
}

std::string utf8FromCodePage(std::string_view text) {
  std::string result;
  for (const char c : text) {
    const char16_t code = toUnicode(static_cast<unsigned char>(c));
    if (code < 0x80) {
      result += static_cast<char>(code);
    } else if (code < 0x800) {
      result += {static_cast<char>(0xC0 | code >> 6), static_cast<char>(0x80 | (code & 0x3F))};
    } else {
      result += {static_cast<char>(0xE0 | code >> 12), static_cast<char>(0x80 | (code >> 6 & 0x3F)),
                 static_cast<char>(0x80 | (code & 0x3F))};
    }
  }
  return result;
}

}  // namespace kelvora
