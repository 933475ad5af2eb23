#include "server/replays/roundRecorder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <vector>

#include "protocol/frames.h"
#include "server/system/files.h"
#include "server/system/process.h"
#include "tests/support/temporaryFolder.h"

namespace kelvora::server {
namespace {

namespace fs = std::filesystem;

class RoundRecorderTest : public testing::Test, protected ServerHost {
 protected:
  const TemporaryFolder home;
  const fs::path folder = home.path() / "inner";
  std::vector<std::string> lines;
  bool isBusy = false;
  std::int64_t time = 1'000'000'000;  // 2001-09-09T01:46:40Z

  void log(const std::string& line) override { lines.push_back(line); }
  std::int64_t wallClock() const override { return time; }
  bool runAside(std::function<void()> work, std::function<void()> finish) override {
    if (isBusy) return false;
    work();
    finish();
    return true;
  }

  ReplaySettings settings(int maxCount = 100) const {
    return {.folder = utf8FromPath(folder), .maxCount = maxCount, .maxMebibytes = 1};
  }
  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }
  static std::string line(const std::string& text) { return wire::toClient<wire::msgServerText>(text); }
};

TEST_F(RoundRecorderTest, KeepsARoundUnderTheTimeOfItsBeginning) {
  RoundRecorder recorder(*this, settings());
  recorder.add(line("before"), 500);
  recorder.begin(1'000);
  EXPECT_TRUE(recorder.isRecording());
  recorder.add(line("one"), 1'000);
  time += 60;
  recorder.add(line("two"), 31'000);
  recorder.end(31'000);
  recorder.add(line("after"), 31'000);
  EXPECT_FALSE(recorder.isRecording());
  ASSERT_EQ(files(), (std::vector<std::string>{"2001-09-09T01.46.40Z.round"}));
  const FileText file = readFile(utf8FromPath(folder / files()[0]), 1'000'000);
  const Moments round = readRound(*file.text);
  Moments::Reader reader(round.bytes());
  EXPECT_EQ(reader.next()->frame, line("one"));
  const auto second = reader.next();
  EXPECT_EQ(second->frame, line("two"));
  EXPECT_EQ(second->at, 30'000);
  EXPECT_TRUE(reader.isAtEnd());
  EXPECT_TRUE(lines.empty());
}

TEST_F(RoundRecorderTest, ShortRoundsAreNotKept) {
  RoundRecorder recorder(*this, settings());
  recorder.begin(0);
  recorder.end(9'999);
  EXPECT_TRUE(files().empty());
  recorder.begin(0);
  recorder.end(10'000);
  EXPECT_EQ(files().size(), 1U);
}

TEST_F(RoundRecorderTest, RoundsOfTheSameSecondHaveDifferentNames) {
  const ReplaySettings here = settings();
  fs::create_directories(folder);
  EXPECT_EQ(storeRound(here, {}, nameOfRound(time)), "");
  EXPECT_EQ(storeRound(here, {}, nameOfRound(time)), "");
  EXPECT_EQ(files(), (std::vector<std::string>{"2001-09-09T01.46.40Z.round", "2001-09-09T01.46.40Z_2.round"}));
}

TEST_F(RoundRecorderTest, TheOldestGoFirst) {
  const ReplaySettings here = settings(2);
  fs::create_directories(folder);
  std::ofstream(folder / "notes.txt") << "mine";
  for (int i = 0; i < 4; ++i) EXPECT_EQ(storeRound(here, {}, nameOfRound(time + i)), "");
  EXPECT_EQ(files(),
            (std::vector<std::string>{"2001-09-09T01.46.42Z.round", "2001-09-09T01.46.43Z.round", "notes.txt"}));
}

TEST_F(RoundRecorderTest, TheirSizeIsBounded) {
  fs::create_directories(folder);
  for (int i = 0; i < 3; ++i) {
    std::ofstream(folder / ("2000-01-0" + std::to_string(i) + ".round")) << std::string(500'000, 'x');
  }
  EXPECT_EQ(storeRound(settings(), {}, nameOfRound(time)), "");
  EXPECT_EQ(files(), (std::vector<std::string>{"2000-01-01.round", "2000-01-02.round", "2001-09-09T01.46.40Z.round"}));
}

TEST_F(RoundRecorderTest, TheirSizeMayReachTheLimit) {
  const std::size_t room = 1'048'576 - roundFile({}).size();
  fs::create_directories(folder);
  std::ofstream(folder / "2000.round") << std::string(room, 'x');
  EXPECT_EQ(storeRound(settings(), {}, nameOfRound(time)), "");
  EXPECT_EQ(files().size(), 2U);
  std::ofstream(folder / "2000.round", std::ios::app) << 'x';
  EXPECT_EQ(storeRound(settings(), {}, nameOfRound(time + 1)), "");
  EXPECT_EQ(files(), (std::vector<std::string>{"2001-09-09T01.46.40Z.round", "2001-09-09T01.46.41Z.round"}));
}

TEST_F(RoundRecorderTest, ErrorsCostTheRecordingAlone) {
  RoundRecorder recorder(*this, settings());
  fs::remove_all(folder);
  recorder.begin(0);
  recorder.end(60'000);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_TRUE(lines[0].starts_with("the round is not recorded: ")) << lines[0];
  isBusy = true;
  recorder.begin(0);
  recorder.end(60'000);
  EXPECT_EQ(lines.back(), "the round is not recorded: the server is busy");
}

TEST_F(RoundRecorderTest, RemovesWhatAKilledServerWasWriting) {
  fs::create_directories(folder);
  for (const char* name : {"a.round.new", "b.new", "c.round"}) std::ofstream(folder / name) << "x";
  const RoundRecorder recorder(*this, settings());
  EXPECT_EQ(files(), (std::vector<std::string>{"b.new", "c.round"}));
}

TEST_F(RoundRecorderTest, AFolderThatCantBeMadeIsAnError) {
  fs::create_directories(folder.parent_path());
  std::ofstream(folder) << "a file";
  EXPECT_THROW(RoundRecorder(*this, settings()), std::runtime_error);
}

}  // namespace
}  // namespace kelvora::server
