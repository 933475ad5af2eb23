// The server's configuration file, its command line, and announcements to its list.

#include <string>
#include <vector>

#include "generated/version.h"
#include "server/config/configFile.h"
#include "server/config/options.h"
#include "server/lists/announcement.h"
#include "server/lists/hostList.h"
#include "server/lists/hostRegistry.h"
#include "tests/fuzz/input.h"

namespace kelvora::server {
namespace {

using fuzz::Input;
using fuzz::require;

void configFile(Input input) {
  int taken = 0;
  const Outcome outcome = readConfig(input.rest(), "a.conf", [&](std::string_view name, const std::string& value) {
    ++taken;
    require(name.find('\n') == std::string_view::npos && value.find('\n') == std::string::npos);
    return name == "refused" ? Outcome::refused("no") : Outcome::done();
  });
  require(!outcome.isRefused() || outcome.reason().starts_with("a.conf:"));
}

/// The input's texts, one per line, as arguments. Doesn't read a file.
void commandLine(Input input) {
  std::vector<std::string> arguments;
  while (!input.isEmpty()) arguments.emplace_back(input.upTo('\n'));
  for (const std::string& text : arguments) {
    if (text.find("config") != std::string::npos) return;
  }
  Options options;
  if (parseOptions(arguments, options).isRefused()) return;
  require(options.rules.roundMs >= 1'000 && options.rules.captureGoal >= 0 && options.rules.intermissionMs >= 0);
  require(options.rules.respawnWaitMs >= 0 && options.rules.incomePerMinute >= 0 && options.rules.speedFactor >= 0);
  require(options.notes.size() <= 200 && options.password.size() <= 255);
}

/// After any announcements, the list consists of whole records, one per host, that every client can read.
void announcements(Input input) {
  HostRegistry registry;
  Millis now = 0;
  HostQuery query{.version = KELVORA_VERSION};
  while (!input.isEmpty()) {
    const std::uint8_t flags = input.byte();
    Announcement announcement;
    const Outcome outcome = readAnnouncement(
        [&](std::string_view name) {
          if (name == "watch") return std::string((flags & 4) != 0 ? "1" : "");
          if (name == "version" && (flags & 1) != 0) return std::string(KELVORA_VERSION);
          return std::string(input.upTo('\n'));
        },
        announcement);
    now += Millis{flags} * 1'000;
    if (outcome.isRefused()) continue;
    if (announcement.host.address.empty()) announcement.host.address = "192.0.2.1";
    const std::string network = "10.0.0." + std::to_string(flags >> 4);
    if ((flags & 2) != 0) {
      registry.withdraw(network, announcement.host, now);
    } else {
      registry.announce(network, announcement, now);
    }
  }
  const std::string list = *registry.listing(query, now);
  require(list.size() <= std::size_t{1} << 20 && list.find("-END-") == list.size() - 6);
  std::size_t records = 0;
  for (Input rest(list.data(), list.size()); !rest.isEmpty(); ++records) {
    const std::string_view record = rest.upTo(']');  // without the bracket
    if (record == "-END-\n") break;
    require(record.size() > 1 && record.front() == '[');
    Input fields(record.data() + 1, record.size() - 1);
    std::vector<std::string> texts;
    while (!fields.isEmpty()) texts.emplace_back(fields.upTo('|'));
    require(texts.size() == 6 && (texts[2] == "0" || texts[2] == "1"));
    require(std::stoi(texts[1]) <= 32'767);  // clients end with a fault if it exceeds 16 signed bits
  }
  require(records <= registry.size());
}

}  // namespace
}  // namespace kelvora::server

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kelvora::server;
  kelvora::fuzz::Input input(data, size);
  switch (input.byte() % 3) {
    case 0:
      configFile(input);
      break;
    case 1:
      commandLine(input);
      break;
    default:
      announcements(input);
  }
  return 0;
}
