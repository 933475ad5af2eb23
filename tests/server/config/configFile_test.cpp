#include "server/config/configFile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <utility>
#include <vector>

#include "server/config/options.h"

namespace kelvora::server {
namespace {

using Settings = std::vector<std::pair<std::string, std::string>>;

/// Reads a text of which everything is taken.
std::string read(std::string_view text, Settings& settings) {
  settings.clear();
  const auto take = [&](std::string_view name, const std::string& value) {
    settings.emplace_back(name, value);
    return Outcome::done();
  };
  return readConfig(text, "a.conf", take).reason();
}

std::string faultOf(std::span<const char* const> arguments) {
  Options options;
  return parseOptions(arguments, options).reason();
}

/// A file that holds the text, in the test's own folder.
std::string fileWith(const std::string& text) {
  const auto* test = testing::UnitTest::GetInstance()->current_test_info();
  const std::string name = testing::TempDir() + "kelvora-" + test->name() + ".conf";
  std::ofstream(name, std::ios::binary) << text;
  return name;
}

TEST(ServerConfig, LinesAreNamesAndValues) {
  Settings settings;
  EXPECT_EQ(read("port = 2011\nnotes=two words\n\tpassword\t=  a=b #1  \r\nempty =", settings), "");
  EXPECT_EQ(settings, (Settings{{"port", "2011"}, {"notes", "two words"}, {"password", "a=b #1"}, {"empty", ""}}));
}

TEST(ServerConfig, CommentsAndEmptyLinesSayNothing) {
  Settings settings;
  EXPECT_EQ(read("# port = 1\n\n  \r\n  #x\n", settings), "");
  EXPECT_EQ(read("", settings), "");
  EXPECT_TRUE(settings.empty());
}

TEST(ServerConfig, FaultsAreToldWithTheirLine) {
  Settings settings;
  EXPECT_EQ(read("port = 1\n\nrubbish\n", settings), "a.conf:3: expected \"name = value\"");
  EXPECT_EQ(read("a = 1\n# a\na = 2\n", settings), "a.conf:3: a is already set on line 1");
  const auto refuseB = [](std::string_view name, const std::string&) {
    return name == "b" ? Outcome::refused("no") : Outcome::done();
  };
  EXPECT_EQ(readConfig("a=1\nb=2\nc=3", "f", refuseB).reason(), "f:2: no");
}

TEST(ServerConfig, AFileHasTheNamesOfTheOptions) {
  const std::string file = fileWith("# arena\nport = 2011\nround-seconds = 60\nnotes = a # b\n");
  const char* arguments[] = {"--config", file.c_str()};
  Options options;
  EXPECT_EQ(parseOptions(arguments, options).reason(), "");
  EXPECT_EQ(options.port, 2011);
  EXPECT_EQ(options.rules.roundMs, 60'000);
  EXPECT_EQ(options.notes, "a # b");
}

TEST(ServerConfig, TheCommandLineOverridesTheFileInAnyOrder) {
  const std::string file = fileWith("port = 2011\nnotes = file\n");
  const std::string config = "--config=" + file;
  const std::vector<std::vector<const char*>> orders = {{"--port", "5", config.c_str()}, {config.c_str(), "--port=5"}};
  for (const auto& arguments : orders) {
    Options options;
    EXPECT_EQ(parseOptions(arguments, options).reason(), "");
    EXPECT_EQ(options.port, 5);
    EXPECT_EQ(options.notes, "file");
  }
}

TEST(ServerConfig, AWrongFileIsToldWithItsNameAndLine) {
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
      {"config = other", ":1: config is for the command line only"},
  };
  for (const Row& row : rows) {
    const std::string file = fileWith(row.text);
    const char* arguments[] = {"--config", file.c_str()};
    EXPECT_EQ(faultOf(arguments), file + row.complaint);
  }
}

TEST(ServerConfig, AFileThatCannotBeReadIsToldByItsName) {
  const std::string missing = testing::TempDir() + "kelvora-no-such.conf";
  const std::string folder = testing::TempDir();
  for (const std::string& name : {missing, folder}) {
    const char* arguments[] = {"--config", name.c_str()};
    EXPECT_TRUE(faultOf(arguments).starts_with("cannot read " + name)) << faultOf(arguments);
  }
  const std::string endless = fileWith(std::string(70'000, '#'));
  const char* arguments[] = {"--config", endless.c_str()};
  EXPECT_EQ(faultOf(arguments), endless + " is longer than 64 KiB");
}

TEST(ServerConfig, AnEmptyFileIsFine) {
  const std::string file = fileWith("");
  const char* arguments[] = {"--config", file.c_str()};
  EXPECT_EQ(faultOf(arguments), "");
}

}  // namespace
}  // namespace kelvora::server
