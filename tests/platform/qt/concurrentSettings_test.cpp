#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <thread>

#include "platform/desktop/settingsDraft.h"
#include "platform/desktop/settingsTurn.h"
#include "tests/platform/qt/settingsFaults.h"

namespace kelvora {
namespace {

using std::chrono::minutes;
using Clock = std::chrono::steady_clock;

/// Several runs of the game that change the same settings.
class ConcurrentSettings : public SettingsFaults {
 protected:
  static constexpr int rounds = 40;

  void writeAll(const std::string& name, milliseconds patience) const {
    for (int number = 100; number < 100 + rounds; ++number) {
      // All have the same length, so the file's size doesn't reveal another run's write.
      write(name + std::to_string(number % 4), std::to_string(number), patience);
      write("shared", name + std::to_string(number), patience);
      std::this_thread::sleep_for(milliseconds(3));  // no user is faster
    }
  }
  void expectAll(const std::string& name) {
    for (int number = 100 + rounds - 4; number < 100 + rounds; ++number) {
      EXPECT_EQ(readInLaterRun(name + std::to_string(number % 4)), std::to_string(number)) << name;
    }
  }
};

TEST_F(ConcurrentSettings, KeepEachOthersValues) {
  write("before", "of old");
  OtherRun ann([&] { writeAll("Ann", minutes(1)); });
  OtherRun bob([&] { writeAll("Bob", minutes(1)); });
  EXPECT_EQ(ann.status(), 0);
  EXPECT_EQ(bob.status(), 0);
  EXPECT_EQ(readInLaterRun("before"), "of old");
  expectAll("Ann");
  expectAll("Bob");
  const std::string last = readInLaterRun("shared");
  EXPECT_TRUE(last == "Ann139" || last == "Bob139") << last;
  EXPECT_TRUE(isTidy());
}

TEST_F(ConcurrentSettings, KeepEachOthersValuesWithoutTurns) {
  write("before", "of old");
  const SettingsTurn neverEnds(std::filesystem::path(file()).parent_path(), minutes(1));
  constexpr milliseconds none(0);
  OtherRun ann([&] { writeAll("Ann", none); });
  OtherRun bob([&] { writeAll("Bob", none); });
  OtherRun eve([&] { writeAll("Eve", none); });
  EXPECT_EQ(ann.status(), 0);
  EXPECT_EQ(bob.status(), 0);
  EXPECT_EQ(eve.status(), 0);
  EXPECT_EQ(readInLaterRun("before"), "of old");
  expectAll("Ann");
  expectAll("Bob");
  expectAll("Eve");
  EXPECT_TRUE(isTidy());
}

TEST_F(ConcurrentSettings, AWriteSeesOtherRunsRecentWrites) {
  write("name", "Ann");
  write("port", "2010");
  OtherRun other([&] { write("name", "Bob"); });
  EXPECT_EQ(other.status(), 0);
  write("port", "2011");
  EXPECT_EQ(readInLaterRun("name"), "Bob");
  EXPECT_EQ(readInLaterRun("port"), "2011");
}

TEST_F(ConcurrentSettings, WaitForAnotherWriterButNotForever) {
  write("before", "of old");
  const Shared<std::atomic<bool>> isHeld;
  OtherRun frozen([&] {
    const SettingsDraft draft(file(), minutes(1));
    isHeld->store(true);
    for (;;) pause();
  });
  while (!isHeld->load()) std::this_thread::yield();
  EXPECT_FALSE(isTurnFree());
  const auto start = Clock::now();
  write("after", "all", milliseconds(100));
  EXPECT_GE(Clock::now() - start, milliseconds(100));
  EXPECT_EQ(readInLaterRun("after"), "all");
  // Nobody waits for it again.
  write("next", "too", std::chrono::hours(1));
  EXPECT_EQ(readInLaterRun("next"), "too");
  EXPECT_EQ(readInLaterRun("before"), "of old");
}

TEST_F(ConcurrentSettings, RemovedDraftIsNotPublished) {
  write("before", "of old");
  SettingsDraft slow(file(), minutes(1));
  EXPECT_FALSE(slow.isRemoved());
  write("after", "all", milliseconds(1));
  EXPECT_TRUE(slow.isRemoved());
  EXPECT_FALSE(slow.publish());
  // The toolkit makes a new file for its value, folder included.
  std::filesystem::create_directory(slow.path().parent_path());
  std::ofstream(slow.path()) << "[misc]\nname=slow\n";
  slow.rename();
  EXPECT_TRUE(slow.isRemoved());
  EXPECT_FALSE(slow.publish());
  EXPECT_EQ(readInLaterRun("before"), "of old");
  EXPECT_EQ(readInLaterRun("after"), "all");
}

TEST_F(ConcurrentSettings, LaterDraftSeesWhatAnEarlierOnePublishes) {
  write("name", "Ann");
  SettingsDraft slow(file(), minutes(1));
  std::ofstream(slow.path()) << "[misc]\nname=slow\n";
  EXPECT_TRUE(slow.publish());
  write("after", "all", milliseconds(1));
  EXPECT_EQ(readInLaterRun("name"), "slow");
  EXPECT_EQ(readInLaterRun("after"), "all");
}

TEST_F(ConcurrentSettings, RunStoppedAtAnyInstantLosesNothing) {
  const Shared<std::atomic<int>> saved;
  write("before", "of old");
  std::mt19937 random(20261122);
  OtherRun other([&] {
    for (int number = 1;; ++number) {
      write("other", std::to_string(number));
      saved->store(number);
    }
  });
  int stoppedInTurn = 0;
  for (int round = 0; round < 100 || stoppedInTurn < 20; ++round) {
    const int begun = *saved;
    while (*saved == begun) std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::microseconds(std::uniform_int_distribution(0, 3'000)(random)));
    other.suspend();
    const int earlier = *saved;
    if (!isTurnFree()) ++stoppedInTurn;
    write("mine", std::to_string(round), milliseconds(1));
    ASSERT_EQ(readInLaterRun("mine"), std::to_string(round));
    other.resume();
    while (*saved < earlier + 2) std::this_thread::yield();
    ASSERT_EQ(readInLaterRun("before"), "of old");
    ASSERT_EQ(readInLaterRun("mine"), std::to_string(round));
    ASSERT_GE(std::stoi(readInLaterRun("other")), earlier + 2);
  }
}

}  // namespace
}  // namespace kelvora
