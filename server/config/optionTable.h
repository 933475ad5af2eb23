#pragma once

#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "base/outcome.h"
#include "server/config/options.h"

namespace kelvora::server {

/// One option, or a heading of the help if it has no name. What its value must be goes by the kind of its target:
/// nothing for a switch, at most `highest` bytes of text, as many letters of code page 1252, which come as UTF-8 and
/// are kept as clients send and show them, or such as a login can carry, a whole number or a number with a point from
/// `lowest` to `highest`, or one of the words that `valueName` lists with strokes between them, of which the target
/// gets the index.
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

  std::string_view name;  ///< without the dashes, as in the configuration file
  std::string_view valueName;
  std::string_view help;  ///< with the default in brackets
  std::variant<Switch, Text, Letters, Whole, Decimal, Word> target;
  int lowest = 0;
  int highest = 0;
};

/// In the order of the help.
std::span<const Option> optionTable();

/// Refuses a value that the option cannot have, in words to go behind its name.
Outcome setOption(Options& options, const Option& option, const std::string& value);

}  // namespace kelvora::server
