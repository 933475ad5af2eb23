#pragma once

#include <string>
#include <string_view>

namespace kelvora {

/// The system's characters for the game's bytes of code page 1252.
std::wstring toWide(std::string_view bytes);
/// The reverse. Drops characters that the code page lacks.
std::string fromWide(std::wstring_view text);
/// Combines separate accents with their letters. Returns text that the system refuses, such as half a character, as is.
std::wstring withJoinedAccents(std::wstring_view text);

/// Converts UTF-8, the encoding of paths, to the system's wide characters.
std::wstring wideFromUtf8(std::string_view bytes);

}  // namespace kelvora
