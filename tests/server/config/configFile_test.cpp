#include "server/config/configFile.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "server/config/options.h"
#include "tests/support/temporaryFolder.h"

namespace kelvora::server {
namespace {

using Settings = std::vector<std::pair<std::string, std::string>>;

/// Parses a text and accepts every setting.
std::string read(std::string_view text, Settings& settings) {
  settings.clear();
  const auto take = [&](std::string_view name, const std::string& value) {
    settings.emplace_back(name, value);
    return Outcome::done();
  };
  return readConfig(text, "a.conf", take).reason();
}

std::string faultOf(const std::vector<std::string>& arguments) {
  Options options;
  return parseOptions(arguments, options).reason();
}

/// A file that holds the text.
std::string fileWith(const std::string& text) {
  static const TemporaryFolder folder;
  const std::string name = (folder.path() / "server.conf").string();
  std::ofstream(name, std::ios::binary) << text;
  return name;
}

TEST(ServerConfig, LinesAreNamesAndValues) {
  Settings settings;
  EXPECT_EQ(read("port = 2011\nnotes=two words\n\tpassword\t=  a=b #1  \r\nempty =", settings), "");
  EXPECT_EQ(settings, (Settings{{"port", "2011"}, {"notes", "two words"}, {"password", "a=b #1"}, {"empty", ""}}));
}

TEST(ServerConfig, CommentsAndEmptyLinesAreIgnored) {
  Settings settings;
  EXPECT_EQ(read("# port = 1\n\n  \r\n  #x\n", settings), "");
  EXPECT_EQ(read("", settings), "");
  EXPECT_TRUE(settings.empty());
}

TEST(ServerConfig, AByteOrderMarkIsNotPartOfTheFirstName) {
  Settings settings;
  EXPECT_EQ(read("\xEF\xBB\xBFport = 1\r\n", settings), "");
  EXPECT_EQ(settings, (Settings{{"port", "1"}}));
}

TEST(ServerConfig, ErrorsNameTheirLine) {
  Settings settings;
  EXPECT_EQ(read("port = 1\n\nrubbish\n", settings), "a.conf:3: expected \"name = value\"");
  EXPECT_EQ(read("a = 1\n# a\na = 2\n", settings), "a.conf:3: a is already set on line 1");
  const auto refuseB = [](std::string_view name, const std::string&) {
    return name == "b" ? Outcome::refused("no") : Outcome::done();
  };
  EXPECT_EQ(readConfig("a=1\nb=2\nc=3", "f", refuseB).reason(), "f:2: no");
}

TEST(ServerConfig, FileUsesTheNamesOfTheOptions) {
  const std::string file = fileWith("# arena\nport = 2011\nround-seconds = 60\nnotes = a # b\n");
  const std::vector<std::string> arguments{"--config", file};
  Options options;
  EXPECT_EQ(parseOptions(arguments, options).reason(), "");
  EXPECT_EQ(options.port, 2011);
  EXPECT_EQ(options.rules.roundMs, 60'000);
  EXPECT_EQ(options.notes, "a # b");
}

TEST(ServerConfig, TheCommandLineOverridesTheFileInAnyOrder) {
  const std::string file = fileWith("port = 2011\nnotes = file\n");
  const std::string config = "--config=" + file;
  const std::vector<std::vector<std::string>> orders = {{"--port", "5", config}, {config, "--port=5"}};
  for (const auto& arguments : orders) {
    Options options;
    EXPECT_EQ(parseOptions(arguments, options).reason(), "");
    EXPECT_EQ(options.port, 5);
    EXPECT_EQ(options.notes, "file");
  }
}

TEST(ServerConfig, ErrorsInAFileNameTheFileAndLine) {
  struct Row {
    const char* text;
    const char* complaint;
  };
  const Row rows[] = {
      {"port = 1\nprot = 2\n", ":2: unknown option \"prot\""},
      {"--port = 1\n", ":1: unknown option \"--port\""},
      {"port = 65536", ":1: port must be a whole number from 0 to 65535"},
      {"port =", ":1: port must be a whole number from 0 to 65535"},
      {"= 1", ":1: unknown option \"\""},
      {"help = 1", ":1: help is for the command line only"},
      {"\nversion =", ":2: version is for the command line only"},
      {"\nunlimited-for = games.example",
       ":2: unlimited-for needs IP addresses and networks, such as 192.0.2.7 and 10.0.0.0/8, or *"},
      {"config = other", ":1: config is for the command line only"},
  };
  for (const Row& row : rows) {
    const std::string file = fileWith(row.text);
    const std::vector<std::string> arguments{"--config", file};
    EXPECT_EQ(faultOf(arguments), file + row.complaint);
  }
}

TEST(ServerConfig, UnreadableFileIsNamed) {
  const std::string missing = testing::TempDir() + "kelvora-no-such.conf";
  const std::string folder = testing::TempDir();
  EXPECT_EQ(faultOf({"--config", missing}), "cannot read " + missing + ": there is no such file");
  EXPECT_EQ(faultOf({"--config", folder}), "cannot read " + folder + ": not a file");
  const std::string endless = fileWith(std::string(70'000, '#'));
  EXPECT_EQ(faultOf({"--config", endless}), "cannot read " + endless + ": longer than 64 KiB");
}

TEST(ServerConfig, AnEmptyFileIsFine) {
  const std::string file = fileWith("");
  const std::vector<std::string> arguments{"--config", file};
  EXPECT_EQ(faultOf(arguments), "");
}

}  // namespace
}  // namespace kelvora::server
