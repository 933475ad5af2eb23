#include "server/moderation/penaltyFile.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/server/moderation/fakeHost.h"
#include "tests/server/system/fileSizeLimit.h"

namespace kelvora::server {
namespace {

namespace fs = std::filesystem;

/// A folder of its own for each test.
class PenaltyFileTest : public testing::Test {
 protected:
  const fs::path folder = fs::temp_directory_path() / ("kelvora-penalties-" + std::to_string(::getpid()));
  const std::string path = (folder / "bans").native();
  FakeHost host;

  void SetUp() override { fs::create_directory(folder); }
  void TearDown() override { fs::remove_all(folder); }

  void write(const std::string& text) const { std::ofstream(path, std::ios::binary) << text; }
  std::string contents() const {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
};

TEST_F(PenaltyFileTest, ChangesAreWritten) {
  PenaltyFile file(host, path);
  EXPECT_FALSE(file.add({.network = "192.0.2.1", .end = host.time + 60, .name = "Ann", .reason = "rude"}).isRefused());
  EXPECT_FALSE(fs::exists(path)) << "the disk must not hold up the game";
  host.finishWork();
  EXPECT_EQ(contents(), "ban 192.0.2.1 2001-09-09T01:47:40Z \"Ann\" rude\n");
  EXPECT_EQ(file.remove(PenaltyKind::ban, "Ann").size(), 1U);
  host.finishWork();
  EXPECT_EQ(contents(), "");
}

TEST_F(PenaltyFileTest, ChangesDuringAWriteAreWrittenTogetherAfterIt) {
  PenaltyFile file(host, path);
  for (const char* network : {"192.0.2.1", "192.0.2.2", "192.0.2.3"}) {
    EXPECT_FALSE(file.add({.network = network}).isRefused());
    EXPECT_EQ(host.pendingWork(), 1U);
  }
  host.finishWork();
  EXPECT_EQ(contents(), "ban 192.0.2.1 forever\nban 192.0.2.2 forever\nban 192.0.2.3 forever\n");
}

TEST_F(PenaltyFileTest, ThePenaltiesOfTheLastProcessCount) {
  write("ban 192.0.2.1 forever\nnonsense\n");
  const PenaltyFile file(host, path);
  EXPECT_NE(file.find(PenaltyKind::ban, "192.0.2.1"), nullptr);
  EXPECT_EQ(host.lines, (std::vector<std::string>{path + ":2: expected \"ban\" or \"mute\""}));
}

TEST_F(PenaltyFileTest, AFileThatCantBeReadIsAnErrorAtTheStart) {
  fs::create_directory(path);
  EXPECT_THROW(PenaltyFile(host, path), std::runtime_error);
  fs::remove(path);
  write(std::string(PenaltyFile::maxSize + 1, '#'));
  EXPECT_THROW(PenaltyFile(host, path), std::runtime_error);
}

TEST_F(PenaltyFileTest, AFolderThatIsMissingIsAnErrorAtTheStart) {
  EXPECT_THROW(PenaltyFile(host, path + "/bans"), std::runtime_error);
}

TEST_F(PenaltyFileTest, RereadingTakesOverWhatTheOperatorWrote) {
  PenaltyFile file(host, path);
  write("mute 192.0.2.9 forever\n");
  file.reread();
  EXPECT_NE(file.find(PenaltyKind::mute, "192.0.2.9"), nullptr);
  EXPECT_EQ(host.lines.back(), "read " + path + ": 1 bans and mutes");
  fs::remove(path);
  fs::create_directory(path);
  file.reread();
  EXPECT_NE(file.find(PenaltyKind::mute, "192.0.2.9"), nullptr) << "what is known stays";
  EXPECT_EQ(host.lines.back(), "cannot read " + path + ": not a file");
}

TEST_F(PenaltyFileTest, AFailedWriteIsLoggedAndRetriedAfterAMinute) {
  PenaltyFile file(host, path);
  fs::create_directory(path + ".new");  // in the way
  EXPECT_FALSE(file.add({.network = "192.0.2.1"}).isRefused());
  host.finishWork();
  ASSERT_EQ(host.lines.size(), 1U);
  EXPECT_TRUE(host.lines[0].starts_with("cannot write " + path + ": ")) << host.lines[0];
  EXPECT_NE(file.find(PenaltyKind::ban, "192.0.2.1"), nullptr);
  fs::remove(path + ".new");
  host.time += PenaltyFile::retryAfter - 1;
  file.tick();
  EXPECT_EQ(host.pendingWork(), 0U);
  host.time += 1;
  file.tick();
  host.finishWork();
  EXPECT_EQ(contents(), "ban 192.0.2.1 forever\n");
  file.tick();
  EXPECT_EQ(host.pendingWork(), 0U);
}

TEST_F(PenaltyFileTest, RereadingDuringAWriteKeepsBoth) {
  PenaltyFile file(host, path);
  EXPECT_FALSE(file.add({.network = "192.0.2.1"}).isRefused());
  write("mute 192.0.2.9 forever\n");
  file.reread();
  EXPECT_NE(file.find(PenaltyKind::ban, "192.0.2.1"), nullptr);
  EXPECT_NE(file.find(PenaltyKind::mute, "192.0.2.9"), nullptr);
  host.finishWork();
  EXPECT_EQ(contents(), "mute 192.0.2.9 forever\nban 192.0.2.1 forever\n");
}

TEST_F(PenaltyFileTest, RereadingAfterAFailedWriteKeepsBoth) {
  write("ban 192.0.2.1 forever\nban 192.0.2.2 forever\n");
  PenaltyFile file(host, path);
  fs::create_directory(path + ".new");  // in the way
  EXPECT_EQ(file.remove(PenaltyKind::ban, "192.0.2.1").size(), 1U);
  EXPECT_FALSE(file.add({.network = "192.0.2.3", .end = host.time + 600}).isRefused());
  EXPECT_FALSE(file.add({.network = "192.0.2.4"}).isRefused());
  EXPECT_EQ(file.remove(PenaltyKind::ban, "192.0.2.4").size(), 1U);
  EXPECT_FALSE(file.add({.network = "192.0.2.6"}).isRefused());
  host.finishWork();
  EXPECT_FALSE(file.add({.network = "192.0.2.3"}).isRefused());
  host.finishWork();
  fs::remove(path + ".new");
  write("ban 192.0.2.1 forever\nban 192.0.2.5 forever\n");
  file.reread();
  EXPECT_EQ(file.find(PenaltyKind::ban, "192.0.2.1"), nullptr) << "lifted";
  EXPECT_EQ(file.find(PenaltyKind::ban, "192.0.2.2"), nullptr) << "taken out by the operator";
  host.time += PenaltyFile::retryAfter;
  file.tick();
  host.finishWork();
  EXPECT_EQ(contents(), "ban 192.0.2.5 forever\nban 192.0.2.3 forever\nban 192.0.2.6 forever\n");
}

TEST_F(PenaltyFileTest, TheEndWritesWhatTheDiskLacks) {
  {
    PenaltyFile file(host, path);
    host.isBusy = true;
    EXPECT_FALSE(file.add({.network = "192.0.2.1"}).isRefused());
  }
  EXPECT_EQ(contents(), "ban 192.0.2.1 forever\n");
}

TEST_F(PenaltyFileTest, TheEndWritesWhatFailedToBeWritten) {
  fs::create_directory(path + ".new");  // in the way
  {
    PenaltyFile file(host, path);
    EXPECT_FALSE(file.add({.network = "192.0.2.1"}).isRefused());
    host.doWork();
    fs::remove(path + ".new");
  }
  EXPECT_EQ(contents(), "ban 192.0.2.1 forever\n");
}

TEST_F(PenaltyFileTest, TheEndLogsThatItCantWrite) {
  {
    PenaltyFile file(host, path);
    host.isBusy = true;
    EXPECT_FALSE(file.add({.network = "192.0.2.1"}).isRefused());
    fs::create_directory(path + ".new");  // in the way
  }
  ASSERT_EQ(host.lines.size(), 1U);
  EXPECT_TRUE(host.lines[0].starts_with("cannot write " + path + ": ")) << host.lines[0];
}

TEST_F(PenaltyFileTest, ADiskThatFillsUpKeepsTheOldFile) {
  PenaltyFile file(host, path);
  for (int i = 1; i <= 100; ++i) EXPECT_FALSE(file.add({.network = "192.0.2." + std::to_string(i)}).isRefused());
  host.finishWork();
  const std::string before = contents();
  EXPECT_FALSE(file.add({.network = "192.0.2.101"}).isRefused());
  for (const rlim_t size : {rlim_t{0}, rlim_t{1}, rlim_t{before.size()}}) {
    {
      const FileSizeLimit full(size);
      host.finishWork();
    }
    EXPECT_EQ(contents(), before);
    EXPECT_FALSE(fs::exists(path + ".new"));
    EXPECT_EQ(host.lines.back(), "cannot write " + path + ": File too large");
    host.time += PenaltyFile::retryAfter;
    file.tick();
  }
  host.finishWork();
  EXPECT_EQ(contents(), before + "ban 192.0.2.101 forever\n");
}

TEST_F(PenaltyFileTest, AReplacementCutAtAnyByteLeavesTheOldFile) {
  // The new text is elsewhere until it is complete, so a crash leaves a part of it beside the old file.
  const std::string before = "ban 192.0.2.1 forever\n";
  const std::string after = before + "ban 192.0.2.2 forever \"Bob\"\n";
  for (std::size_t size = 0; size <= after.size(); ++size) {
    write(before);
    std::ofstream(path + ".new", std::ios::binary) << after.substr(0, size);
    PenaltyFile file(host, path);
    EXPECT_NE(file.find(PenaltyKind::ban, "192.0.2.1"), nullptr);
    EXPECT_EQ(file.penalties().all().size(), 1U);
    EXPECT_FALSE(file.add({.network = "192.0.2.2", .name = "Bob"}).isRefused());
    host.finishWork();
    EXPECT_EQ(contents(), after);
    EXPECT_FALSE(fs::exists(path + ".new"));
  }
  EXPECT_TRUE(host.lines.empty());
}

TEST_F(PenaltyFileTest, WithoutAPathNothingIsWritten) {
  PenaltyFile file(host, "");
  EXPECT_FALSE(file.add({.network = "192.0.2.1"}).isRefused());
  file.reread();
  EXPECT_NE(file.find(PenaltyKind::ban, "192.0.2.1"), nullptr);
  EXPECT_EQ(host.pendingWork(), 0U);
}

}  // namespace
}  // namespace kelvora::server
