// The documents list the program's options.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>

#include "generated/sourceFolder.h"
#include "server/config/configFile.h"
#include "server/config/optionTable.h"

namespace kelvora::server {
namespace {

std::string text(const std::string& path) {
  std::ifstream file(KELVORA_SOURCE_DIR "/" + path, std::ios::binary);
  EXPECT_TRUE(file.is_open()) << path;
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string replaced(std::string text, const std::string& what, const std::string& by) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size()) {
    text.replace(at, what.size(), by);
  }
  return text;
}

/// Everything that looks like an option in the text.
std::set<std::string> optionsIn(const std::string& text) {
  static const std::regex expression("--([a-z][a-z-]*)");
  std::set<std::string> names;
  for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match) {
    names.insert((*match)[1]);
  }
  return names;
}

std::set<std::string> optionsOfTheProgram() {
  std::set<std::string> names;
  for (const Option& option : optionTable()) {
    if (!option.name.empty()) names.insert(std::string(option.name));
  }
  return names;
}

TEST(ServerManual, ThePageHasAParagraphForEachOption) {
  const std::string page = text("packaging/kelvora-server.6");
  for (const Option& option : optionTable()) {
    if (option.name.empty()) continue;
    std::string tag = "\n.TP\n\\fB" + replaced("--" + std::string(option.name), "-", "\\-") + "\\fR";
    if (!option.valueName.empty()) tag += " \\fI" + std::string(option.valueName) + "\\fR";
    EXPECT_NE(page.find(tag + "\n"), std::string::npos) << "packaging/kelvora-server.6 has no paragraph " << tag;
  }
}

TEST(ServerManual, ThePageAndTheHelpNameTheSameOptions) {
  EXPECT_EQ(optionsIn(helpText()), optionsOfTheProgram());
  EXPECT_EQ(optionsIn(replaced(text("packaging/kelvora-server.6"), "\\-", "-")), optionsOfTheProgram());
}

TEST(ServerManual, TheGuideHasARowForEachOption) {
  const std::string guide = text("docs/server.md");
  for (const Option& option : optionTable()) {
    if (option.name.empty()) continue;
    std::string cell = "| `--" + std::string(option.name);
    if (!option.valueName.empty()) cell += " " + replaced(std::string(option.valueName), "|", "\\|");
    EXPECT_NE(guide.find(cell + "` |"), std::string::npos) << "docs/server.md has no row " << cell;
  }
  for (const std::string& name : optionsIn(guide)) {
    if (name == "now" || name == "build" || name == "preset") continue;  // options of systemctl and cmake
    EXPECT_TRUE(optionsOfTheProgram().contains(name)) << "docs/server.md has an option " << name;
  }
}

TEST(ServerManual, InstalledConfigurationIsValid) {
  // As installed, and with its examples uncommented.
  const std::string file = text("packaging/server/default.conf");
  for (const std::string& config : {file, std::regex_replace(file, std::regex("\n#([a-z-]+ =)"), "\n$1")}) {
    Options options;
    const Outcome outcome = readConfig(config, "default.conf", [&](std::string_view name, const std::string& value) {
      for (const Option& option : optionTable()) {
        if (option.name == name && !name.empty()) return setOption(options, option, value);
      }
      return Outcome::refused("unknown option " + std::string(name));
    });
    EXPECT_EQ(outcome.reason(), "");
    EXPECT_EQ(options.port, 2010);
    EXPECT_EQ(options.password, "");
  }
}

TEST(ServerManual, TheUnitStartsTheInstalledProgramWithTheFileOfItsName) {
  const std::string unit = text("packaging/kelvora-server@.service");
  EXPECT_NE(unit.find("\nLoadCredential=%i.conf:/etc/kelvora-server/%i.conf\n"), std::string::npos);
  EXPECT_NE(unit.find("\nExecStart=/usr/bin/kelvora-server --config %d/%i.conf\n"), std::string::npos);
  for (const char* line : {"DynamicUser=yes", "NoNewPrivileges=yes", "ProtectSystem=strict", "PrivateTmp=yes",
                           "PrivateDevices=yes", "MemoryDenyWriteExecute=yes", "CapabilityBoundingSet=",
                           "SystemCallFilter=@system-service", "RestrictAddressFamilies=AF_INET AF_INET6 AF_UNIX"}) {
    EXPECT_NE(unit.find("\n" + std::string(line) + "\n"), std::string::npos) << line;
  }
}

}  // namespace
}  // namespace kelvora::server
