#include "tests/platform/qt/settingsFaults.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>
#include <thread>

#include "tests/support/shortTests.h"

namespace kelvora {
namespace {

constexpr std::size_t keyCount = 5;

std::string keyName(std::size_t key) { return "key" + std::to_string(key); }

/// Values of very different lengths, so that a truncated or mixed one equals none of them.
std::string valueOf(int number) {
  return std::to_string(number) + std::string(static_cast<std::size_t>(number * 37 % 900), 'x') + "!";
}

TEST_F(SettingsFaults, KilledRunLosesNoSavedValueAndLeavesNoPartialFile) {
  struct Progress {
    std::array<std::atomic<int>, keyCount> begun;
    std::array<std::atomic<int>, keyCount> saved;
    std::atomic<int> number;
  };
  Shared<Progress> progress;
  write("before", "of old");
  std::mt19937 random(20261121);
  int interrupted = 0;
  for (int round = 0; round < 40 || interrupted <= 5; ++round) {
    const int before = progress->number;
    OtherRun run([&] {
      for (;;) {
        const int number = ++progress->number;
        const std::size_t key = static_cast<std::size_t>(number) % keyCount;
        progress->begun[key] = number;
        write(keyName(key), valueOf(number));
        progress->saved[key] = number;
      }
    });
    while (progress->number == before) std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::microseconds(std::uniform_int_distribution(0, 5'000)(random)));
    run.kill();
    ASSERT_EQ(readInLaterRun("before"), "of old");
    for (std::size_t key = 0; key < keyCount; ++key) {
      const std::string stored = readInLaterRun(keyName(key));
      const int begun = progress->begun[key];
      const int saved = progress->saved[key];
      const std::string savedText = saved == 0 ? "missing" : valueOf(saved);
      if (begun == saved) {
        ASSERT_EQ(stored, savedText) << "round " << round;
      } else {
        ++interrupted;
        ASSERT_TRUE(stored == savedText || stored == valueOf(begun)) << "round " << round << ": " << stored;
        // From now on, whichever value it is counts as the saved one.
        progress->saved[key] = stored == savedText ? saved : begun;
        progress->begun[key] = progress->saved[key].load();
      }
    }
  }
  EXPECT_TRUE(isTurnFree());
  write("after", "all");
  EXPECT_EQ(readInLaterRun("after"), "all");
}

TEST_F(SettingsFaults, LeftoversOfAKilledRunAreRemoved) {
  write("before", "of old");
  const std::filesystem::path left = file() + ".saving";
  std::filesystem::create_directory(left);
  std::ofstream(left / "7") << "[misc]\nafter=half";
  std::ofstream(left / "7.lock") << "1\nkelvora\nanother-machine\n";
  std::ofstream(file() + ".lock");  // from an older version, without a process id
  std::filesystem::create_directories(file() + ".saving-xyz/2");
  EXPECT_TRUE(isTurnFree());
  write("after", "all");
  EXPECT_EQ(readInLaterRun("before"), "of old");
  EXPECT_EQ(readInLaterRun("after"), "all");
  EXPECT_TRUE(isTidy());
}

/// Simulates a full disk: files may not grow beyond this many bytes.
void limitFiles(rlim_t bytes) {
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  limit.rlim_cur = bytes;
  setrlimit(RLIMIT_FSIZE, &limit);
}

TEST_F(SettingsFaults, FullDiskKeepsTheOldFile) {
  write("name", "Ann");
  write("long", std::string(3'000, 'x'));
  for (const rlim_t room : {0U, 1U, 100U, 2'900U}) {
    OtherRun run([&] {
      limitFiles(room);
      write("name", "Bob");
      write("other", std::string(100, 'y'));
    });
    EXPECT_EQ(run.status(), 0) << room;
    EXPECT_EQ(readInLaterRun("name"), "Ann") << room;
    EXPECT_EQ(readInLaterRun("long"), std::string(3'000, 'x')) << room;
    EXPECT_EQ(readInLaterRun("other"), "missing") << room;
  }
  write("name", "Eve");
  EXPECT_EQ(readInLaterRun("name"), "Eve") << "once there is space again";
}

TEST_F(SettingsFaults, AnyAmountOfFreeSpaceStoresAllOrNothing) {
  // Longer than the toolkit's lock file, which is the first to run out of space.
  write("long", std::string(300, 'x'));
  write("name", "Ann");
  const auto size = std::filesystem::file_size(file());
  for (rlim_t room = 0; room < size + 20; room += hasShortTests ? 8 : 1) {
    write("name", "Ann");
    OtherRun run([&] {
      limitFiles(room);
      write("name", "Zacharias");
    });
    EXPECT_EQ(run.status(), 0) << room;
    // Six more letters. The value is complete even without the line break.
    ASSERT_EQ(readInLaterRun("name"), room < size + 5 ? "Ann" : "Zacharias") << room;
    ASSERT_EQ(readInLaterRun("long"), std::string(300, 'x')) << room;
  }
}

TEST_F(SettingsFaults, ValuesCanBeStoredWhateverTheFileContains) {
  std::mt19937 random(7);
  const std::string_view bits = "[]=%;,\"\\@()\n\n\r\x01 axmisc/General\xC3\x80";
  for (int round = 0; round < 50; ++round) {
    write("name", "Ann");
    std::string junk;
    for (int length = std::uniform_int_distribution(0, 60)(random); length > 0; --length) {
      junk += bits[std::uniform_int_distribution(std::size_t{0}, bits.size() - 1)(random)];
    }
    std::ofstream(file()) << junk;
    write("name", "Bob");
    ASSERT_EQ(readInLaterRun("name"), "Bob") << round << ": " << junk;
  }
}

TEST_F(SettingsFaults, ALinkToTheFileStaysALink) {
  write("name", "Ann");
  const std::filesystem::path real = home_ / "settings of mine";
  std::filesystem::rename(file(), real);
  std::filesystem::create_symlink(real, file());
  write("name", "Bob");
  EXPECT_TRUE(std::filesystem::is_symlink(file()));
  EXPECT_EQ(readInLaterRun("name"), "Bob");
}

TEST_F(SettingsFaults, ReadsTheLastWrittenValue) {
  for (int number = 100; number < 200; ++number) {
    write("number", std::to_string(number));
    ASSERT_EQ(QtSettings(file()).read("misc", "number", ""), std::to_string(number));
  }
}

TEST_F(SettingsFaults, EachFileIsNewerThanTheLastEvenIfTheClockGoesBack) {
  write("name", "Ann");
  const auto ahead = std::filesystem::file_time_type::clock::now() + std::chrono::hours(1);
  std::filesystem::last_write_time(file(), ahead);
  write("name", "Bob");
  EXPECT_GT(std::filesystem::last_write_time(file()), ahead);
  EXPECT_EQ(QtSettings(file()).read("misc", "name", ""), "Bob");
}

TEST_F(SettingsFaults, FullDiskWithoutASettingsFileIsNoFault) {
  OtherRun run([&] {
    limitFiles(0);
    write("name", "Ann");
    if (QtSettings(file()).read("misc", "other", "default") != "default") _exit(1);
  });
  EXPECT_EQ(run.status(), 0);
  write("name", "Bob");
  EXPECT_EQ(readInLaterRun("name"), "Bob");
}

TEST_F(SettingsFaults, NonFileInTheFilesPlaceStays) {
  std::filesystem::create_directories(std::filesystem::path(file()).parent_path());
  const std::filesystem::path node = home_ / "node";
  ASSERT_EQ(mknod(node.c_str(), S_IFSOCK | S_IRUSR | S_IWUSR, 0), 0);
  std::filesystem::create_symlink(node, file());
  write("name", "Ann");
  EXPECT_EQ(std::filesystem::read_symlink(file()), node);
  EXPECT_TRUE(std::filesystem::is_socket(node));
}

}  // namespace
}  // namespace kelvora
