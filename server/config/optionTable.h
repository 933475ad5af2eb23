#pragma once

#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "base/outcome.h"
#include "server/config/options.h"

namespace kelvora::server {

/// An option, or a heading of the help if it has no name. The kind of its target determines its values.
struct Option {
  /// Takes no value.
  using Switch = void (*)(Options&);
  /// `min` to `max` bytes, as given.
  using Text = std::string& (*)(Options&);
  /// Given in UTF-8 and stored in code page 1252, in `min` to `max` bytes. With `inLogins` it must not contain a
  /// login's delimiters.
  struct Letters {
    Text target;
    bool inLogins;
  };
  /// A number from `min` to `max`.
  using Whole = void (*)(Options&, int);
  using Decimal = void (*)(Options&, double);
  /// One of the words in `valueName`, separated by vertical bars. Stores its index.
  struct Word {
    void (*set)(Options&, int);
  };

  std::string_view name;  ///< without dashes, as in the configuration file
  std::string_view valueName;
  std::string_view help;  ///< ends with the default in brackets if it takes a value
  std::variant<Switch, Text, Letters, Whole, Decimal, Word> target;
  int min = 0;
  int max = 0;
  Outcome (*check)(const std::string& text) = nullptr;  ///< a further check, whose reason follows the name
};

/// All options in the order of the help.
std::span<const Option> optionTable();

/// Sets an option. Refuses invalid values with a reason that follows the option's name.
Outcome setOption(Options& options, const Option& option, const std::string& value);

}  // namespace kelvora::server
