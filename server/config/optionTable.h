#pragma once

#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "base/outcome.h"
#include "server/config/options.h"

namespace kelvora::server {

/// An option, or a heading of the help if it has no name. The kind of its target determines its values. A Switch takes
/// none. A Text has `lowest` to `highest` bytes. Letters are given as UTF-8 and stored in code page 1252, in `lowest`
/// to `highest` bytes. With `inLogins` they must not contain a login's delimiters. Whole and Decimal numbers are from
/// `lowest` to `highest`. A Word is one of those in `valueName`, separated by vertical bars, and its index is stored.
struct Option {
  using Switch = void (*)(Options&);
  using Text = std::string& (*)(Options&);
  struct Letters {
    Text target;
    bool inLogins;
  };
  using Whole = void (*)(Options&, int);
  using Decimal = void (*)(Options&, double);
  struct Word {
    void (*set)(Options&, int);
  };

  std::string_view name;  ///< without dashes, as in the configuration file
  std::string_view valueName;
  std::string_view help;  ///< including the default in brackets
  std::variant<Switch, Text, Letters, Whole, Decimal, Word> target;
  int lowest = 0;
  int highest = 0;
};

/// All options in the order of the help.
std::span<const Option> optionTable();

/// Sets an option. Refuses invalid values with a reason that follows the option's name.
Outcome setOption(Options& options, const Option& option, const std::string& value);

}  // namespace kelvora::server
