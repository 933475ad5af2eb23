#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "server/inventory.h"

namespace kelvora::server {

/// What the command line asks for.
struct Options {
  std::string address = "127.0.0.1";
  std::uint16_t port = 2010;  ///< 0 for any free one
  std::string password;       ///< empty: none is asked for
  int income = defaultIncome;
  std::optional<std::uint16_t> webPort;  ///< none: no web server; 0 for any free one
  std::string webAddress;                ///< empty: `address`
  std::string publicAddress;             ///< empty: `address`
  std::string notes;
  bool help = false;
  bool version = false;
  std::string error;  ///< why the command line makes no sense; empty if it does
};

/// `arguments` without the program's name; "--port 2010" and "--port=2010" are the same.
Options parseOptions(std::span<const char* const> arguments);

std::string helpText();
/// "1.2.1"
std::string versionText();

}  // namespace kelvora::server
