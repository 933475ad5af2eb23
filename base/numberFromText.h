#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>
#include <type_traits>

#include "base/decimal.h"

namespace kelvora {

/// The whole text as one number of the given type, or nothing if it is anything else or doesn't fit.
template <class Number>
std::optional<Number> numberFromText(std::string_view text) {
  if constexpr (std::is_same_v<Number, double>) {
    return parseWholeDecimal(text);
  } else {
    Number value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return value;
  }
}

}  // namespace kelvora
