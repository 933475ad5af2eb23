#include "server/system/files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "server/system/process.h"

namespace kelvora::server {
namespace {

namespace fs = std::filesystem;

class Files : public testing::Test {
 protected:
  const fs::path folder = fs::temp_directory_path() / ("kelvora-files-" + std::to_string(std::random_device{}()));
  const std::string path = utf8FromPath(folder / pathFromUtf8("caf\xc3\xa9"));

  void SetUp() override { fs::create_directory(folder); }
  void TearDown() override { fs::remove_all(folder); }
};

TEST_F(Files, AreReplacedAsAWhole) {
  for (const std::string& text :
       {std::string("first"), std::string(), std::string(100'000, 'x'), std::string("a\0b", 3)}) {
    EXPECT_EQ(replaceFile(path, text), "");
    EXPECT_EQ(readFile(path, 100'000).text, text);
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 1) << "nothing else is left";
}

TEST_F(Files, ThatCantBeReplacedStay) {
  EXPECT_EQ(replaceFile(path, "before"), "");
  fs::create_directory(pathFromUtf8(path + ".new"));  // in the way
  EXPECT_NE(replaceFile(path, "after"), "");
  EXPECT_EQ(readFile(path, 100).text, "before");
  EXPECT_NE(replaceFile(path + "/below/a/file", "x"), "");
}

TEST_F(Files, LeaveNothingBehindWhenTheMoveFails) {
  fs::create_directory(pathFromUtf8(path));  // no file can replace it
  EXPECT_NE(replaceFile(path, "text"), "");
  EXPECT_FALSE(fs::exists(pathFromUtf8(path + ".new")));
  EXPECT_TRUE(fs::is_directory(pathFromUtf8(path)));
}

TEST_F(Files, MayBeMissingButNotTooLongOrFolders) {
  const FileText missing = readFile(path, 10);
  EXPECT_EQ(missing.text, std::nullopt);
  EXPECT_EQ(missing.error, "");
  EXPECT_EQ(replaceFile(path, std::string(2'049, 'x')), "");
  EXPECT_EQ(readFile(path, 2'048).error, "longer than 2 KiB");
  EXPECT_EQ(readFile(path, 2'049).error, "");
  EXPECT_EQ(readFile(utf8FromPath(folder), 10).error, "not a file");
}

}  // namespace
}  // namespace kelvora::server
