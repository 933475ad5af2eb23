#include "server/system/process.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace kelvora::server {
namespace {

namespace fs = std::filesystem;

TEST(Paths, ComeFromUtf8AndReturnToIt) {
  for (const char* text : {"", "plain/name.txt", "caf\xc3\xa9/\xe2\x82\xac.conf", "\xf0\x9f\x8e\xae"}) {
    EXPECT_EQ(utf8FromPath(pathFromUtf8(text)), text);
  }
}

TEST(Paths, OfRequestsMayBeAnything) {
  // Not UTF-8. Such a name belongs to no file here, but must not end the server.
  EXPECT_FALSE(fs::exists(pathFromUtf8("\xff\xfe\x80")));
}

TEST(Paths, NameFilesWithLettersOutsideAscii) {
  const std::string name = "kelvora-caf\xc3\xa9-" + std::to_string(std::random_device{}());
  const fs::path file = fs::temp_directory_path() / pathFromUtf8(name);
  std::ofstream(file) << "text";
  bool isListed = false;
  for (const auto& entry : fs::directory_iterator(fs::temp_directory_path())) {
    isListed = isListed || utf8FromPath(entry.path().filename()) == name;
  }
  EXPECT_TRUE(isListed);
  fs::remove(file);
}

TEST(Programs, KnowTheirFolder) {
  bool isHere = false;
  for (const auto& entry : fs::directory_iterator(programFolder())) {
    isHere = isHere || utf8FromPath(entry.path().stem()) == "kelvora_server_system_tests";
  }
  EXPECT_TRUE(isHere);
}

TEST(Programs, TakeTheirArgumentsWithoutTheirName) {
  char name[] = "program";
  char* argv[] = {name, nullptr};
  // Windows asks the system for them: this program's own have the test runner's options at most.
  for (const std::string& argument : commandLine(1, argv)) EXPECT_TRUE(argument.starts_with("--gtest")) << argument;
}

TEST(StopSignals, HaveNames) {
  for (const int signal : stopSignals(true)) EXPECT_FALSE(signalName(signal).empty());
}

}  // namespace
}  // namespace kelvora::server
