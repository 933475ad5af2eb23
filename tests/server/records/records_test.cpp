#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <deque>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <stdexcept>

#include "server/records/database.h"
#include "server/records/recordBook.h"
#include "server/system/process.h"
#include "tests/server/system/fileSizeLimit.h"

namespace kelvora::server {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t day = 86'400;
constexpr std::int64_t today = 20'000 * day + 500;

/// A folder of its own, and work aside that waits for `finishWork`.
class RecordsTest : public testing::Test, protected ServerHost {
 protected:
  const fs::path folder = fs::temp_directory_path() / ("kelvora-records-" + std::to_string(std::random_device{}()));
  const std::string path = (folder / "records").native();
  std::int64_t time = today;
  const Deeds unreadable{.name = "unreadable"};
  std::vector<std::string> lines;  // logged
  std::deque<std::pair<std::function<void()>, std::function<void()>>> work;
  bool isBusy = false;

  void SetUp() override { fs::create_directory(folder); }
  void TearDown() override { fs::remove_all(folder); }

  void log(const std::string& line) override { lines.push_back(line); }
  std::int64_t wallClock() const override { return time; }
  bool runAside(std::function<void()> job, std::function<void()> finish) override {
    if (!isBusy) work.emplace_back(std::move(job), std::move(finish));
    return !isBusy;
  }
  void finishWork() {
    for (; !work.empty(); work.pop_front()) {
      work.front().first();
      work.front().second();
    }
  }
  static Deeds once(const std::string& name, std::int64_t captures, std::int64_t wins = 0) {
    return {.name = name, .rounds = 1, .captures = captures, .wins = wins, .seconds = 60};
  }
  static std::vector<std::string> names(const std::vector<Deeds>& table) {
    std::vector<std::string> found;
    for (const Deeds& deeds : table) found.push_back(deeds.name);
    return found;
  }
  Deeds found(RecordBook& book, const std::string& name) {
    std::optional<Deeds> deeds;
    EXPECT_TRUE(book.find(name, [&](const std::optional<Deeds>& answer) { deeds = answer; }));
    EXPECT_FALSE(deeds.has_value()) << "the disk must not hold up the game";
    finishWork();
    return deeds.value_or(unreadable);
  }
  /// The second answer, after the pending one.
  Outcome verdict(RecordBook& book, const std::string& name, const std::string& password) {
    static ClientId client = 100;
    ++client;
    EXPECT_TRUE(book.verdict(client, name, password).isPending);
    EXPECT_TRUE(book.verdict(client, name, password).isPending);
    finishWork();
    const NameVerdict answer = book.verdict(client, name, password);
    EXPECT_FALSE(answer.isPending);
    book.left(client);
    return answer.outcome;
  }
  std::string claimed(RecordBook& book, const std::string& name, const std::string& password) {
    std::string answer;
    EXPECT_TRUE(book.claim(name, password, [&](const std::string& text) { answer = text; }));
    finishWork();
    return answer;
  }
};

TEST_F(RecordsTest, AddUpPerPlayer) {
  Database database(path);
  database.add({once("Ann", 3, 1), once("Bob", 5)}, {"ann", "bob"}, today);
  database.add({once("ANN", 4)}, {"ann"}, today + 60);
  EXPECT_EQ(database.deedsOf("ann"), (Deeds{.name = "ANN", .rounds = 2, .captures = 7, .wins = 1, .seconds = 120}));
  EXPECT_EQ(database.deedsOf("cat"), Deeds{});
  EXPECT_EQ(names(database.top(10)), (std::vector<std::string>{"ANN", "Bob"}));
  EXPECT_EQ(names(database.top(1)), (std::vector<std::string>{"ANN"}));
}

TEST_F(RecordsTest, OfThirtyDaysHaveATableOfTheirOwn) {
  Database database(path);
  database.add({once("Ann", 9)}, {"ann"}, today - 30 * day);
  database.add({once("Bob", 3)}, {"bob"}, today - 29 * day);
  database.add({once("Bob", 3), once("Cat", 4)}, {"bob", "cat"}, today);
  EXPECT_EQ(names(database.top(10)), (std::vector<std::string>{"Ann", "Bob", "Cat"}));
  EXPECT_EQ(names(database.topOfTheLastDays(10, today)), (std::vector<std::string>{"Bob", "Cat"}));
  EXPECT_EQ(database.topOfTheLastDays(10, today).at(0).captures, 6);
  EXPECT_EQ(names(database.topOfTheLastDays(10, today + day)), (std::vector<std::string>{"Cat", "Bob"}));
}

TEST_F(RecordsTest, OfEqualCapturesTheWinsCount) {
  Database database(path);
  database.add({once("Ann", 2, 0), once("Bob", 2, 1)}, {"ann", "bob"}, today);
  EXPECT_EQ(names(database.top(10)), (std::vector<std::string>{"Bob", "Ann"}));
  EXPECT_EQ(names(database.topOfTheLastDays(10, today)), (std::vector<std::string>{"Bob", "Ann"}));
}

TEST_F(RecordsTest, NamesMayHaveAnyBytes) {
  Database database(path);
  const std::string name("J\xFC\x00';--", 7);
  database.add({once(name, 1)}, {name}, today);
  EXPECT_EQ(database.deedsOf(name).name, name);
}

TEST_F(RecordsTest, SeveralServersShareAFile) {
  Database one(path);
  Database two(path);
  for (int i = 0; i < 20; ++i) {
    one.add({once("Ann", 1)}, {"ann"}, today);
    two.add({once("Ann", 1)}, {"ann"}, today);
  }
  EXPECT_EQ(one.deedsOf("ann").captures, 40);
}

TEST_F(RecordsTest, AServerKilledAtAnyInstantLosesNothingThatWasStored) {
  // The child tells each round that it has stored, until it is killed in the middle of the next one.
  std::mt19937 random(5);
  std::int64_t told = 0;
  for (int round = 0; round < 12; ++round) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      try {
        Database database(path);
        for (;;) {
          database.add({once("Ann", 1), once("Bob", 1)}, {"ann", "bob"}, today);
          if (::write(ends[1], "x", 1) != 1) ::_exit(1);
        }
      } catch (const DatabaseError&) {
        ::_exit(2);
      }
    }
    ::close(ends[1]);
    char byte = 0;
    for (auto wanted = 1 + random() % 7; wanted > 0; --wanted) ASSERT_EQ(::read(ends[0], &byte, 1), 1);
    for (volatile int wait = static_cast<int>(random() % 200'000); wait > 0;) wait = wait - 1;
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    std::int64_t rest = 0;
    while (::read(ends[0], &byte, 1) == 1) ++rest;
    ::close(ends[0]);
    Database database(path);
    const Deeds ann = database.deedsOf("ann");
    EXPECT_EQ(ann.captures, database.deedsOf("bob").captures) << "a round is stored as a whole";
    EXPECT_GT(ann.captures, told + rest) << "what was told is there";
    told = ann.captures;
  }
}

TEST_F(RecordsTest, ABrokenFileCostsTheRecordsOnly) {
  std::ofstream(path) << std::string(5'000, 'x');
  RecordBook book(*this, path);
  book.open();
  finishWork();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0], "no records: " + path + ": file is not a database");
  book.add({{.client = 1, .name = "Ann", .captures = 2}}, true, 60'000);
  EXPECT_EQ(found(book, "Ann"), unreadable);
  EXPECT_EQ(lines.size(), 1U) << "once";
  EXPECT_FALSE(verdict(book, "Ann", "").isRefused());
  EXPECT_EQ(claimed(book, "Ann", "secret"), "The name can't be claimed now.");
  fs::remove(path);
  book.add({{.client = 1, .name = "Ann", .captures = 2}}, true, 120'000);
  EXPECT_EQ(found(book, "Ann").captures, 2);
  EXPECT_EQ(lines.back(), "the records work again");
}

TEST_F(RecordsTest, AFullDiskCostsTheRecordsOnly) {
  // Linux has a device that is always full.
  RecordBook book(*this, "/dev/full");
  book.add({{.client = 1, .name = "Ann", .captures = 2}}, true, 60'000);
  finishWork();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_TRUE(lines[0].starts_with("no records: /dev/full: ")) << lines[0];
}

TEST_F(RecordsTest, ADiskThatFillsUpCostsWhatItCantTake) {
  // Whatever piece of the database is cut, each round is stored as a whole or not at all.
  int failed = 0;
  for (rlim_t size = 0; size < 120'000; size += 2'999) {
    const std::string file = path + std::to_string(size);
    std::int64_t stored = 0;
    {
      const FileSizeLimit full(size);
      std::optional<Database> database;
      for (int round = 0; round < 40; ++round) {
        try {
          if (!database) database.emplace(file);
          database->add({once("Ann", 1), once("Bob " + std::to_string(round), 1)}, {"ann", "bob"}, today + round);
          ++stored;
        } catch (const DatabaseError&) {
          database.reset();
          ++failed;
        }
      }
    }
    Database database(file);
    EXPECT_EQ(database.deedsOf("ann").captures, stored) << size;
    EXPECT_EQ(database.deedsOf("bob").captures, stored) << size;
    database.add({once("Ann", 1)}, {"ann"}, today);
    EXPECT_EQ(database.deedsOf("ann").captures, stored + 1) << "with room, it goes on";
  }
  EXPECT_GT(failed, 0);
}

TEST_F(RecordsTest, AGameOnADiskThatFillsUpGoesOn) {
  RecordBook book(*this, path);
  book.add({{.client = 1, .name = "Ann", .captures = 2}}, true, 60'000);
  finishWork();
  {
    const FileSizeLimit full(0);
    book.add({{.client = 1, .name = "Ann", .captures = 3}}, true, 120'000);
    EXPECT_FALSE(verdict(book, "Bob", "").isRefused());
    EXPECT_EQ(claimed(book, "Bob", "secret"), "The name can't be claimed now.");
    EXPECT_EQ(lines.size(), 1U) << "once";
  }
  EXPECT_EQ(found(book, "Ann").captures, 2);
  EXPECT_EQ(lines.size(), 1U) << "reading tells nothing of writing";
  EXPECT_TRUE(lines.at(0).starts_with("no records: " + path + ": ")) << lines.at(0);
  book.add({{.client = 1, .name = "Ann", .captures = 4}}, true, 180'000);
  EXPECT_EQ(found(book, "Ann").captures, 6);
  EXPECT_EQ(lines.back(), "the records work again");
}

TEST_F(RecordsTest, OnlyTheServersUserCanReadANewFile) {
  const mode_t before = ::umask(S_IWGRP | S_IWOTH);
  Database database(path);
  database.add({once("Ann", 3)}, {"ann"}, today);
  ::umask(before);
  for (const char* ending : {"", "-wal", "-shm"}) {
    EXPECT_EQ(fs::status(path + ending).permissions(), fs::perms::owner_read | fs::perms::owner_write) << ending;
  }
}

TEST_F(RecordsTest, AMissingFolderIsAnErrorAtTheStart) {
  try {
    const RecordBook book(*this, path + "/records");
    FAIL() << "it is accepted";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(error.what(), "cannot write " + path + "/records: there is no folder " + path);
  }
}

TEST_F(RecordsTest, CountTheTimeSinceTheLastRound) {
  RecordBook book(*this, path);
  book.add({{.client = 1, .name = "Ann", .captures = 2, .isWinner = true, .joined = 10'000}}, true, 70'000);
  book.add({{.client = 1, .name = "Ann", .captures = 1, .joined = 10'000}}, false, 75'000);
  EXPECT_EQ(found(book, "ann"), (Deeds{.name = "Ann", .rounds = 1, .captures = 3, .wins = 1, .seconds = 65}));
  EXPECT_EQ(names(book.tables().always), (std::vector<std::string>{"Ann"}));
  EXPECT_EQ(names(book.tables().lately), (std::vector<std::string>{"Ann"}));
  RecordBook next(*this, path);
  next.open();
  finishWork();
  EXPECT_EQ(names(next.tables().always), (std::vector<std::string>{"Ann"})) << "known from the start";
}

TEST_F(RecordsTest, AClaimedNameNeedsItsPassword) {
  RecordBook book(*this, path);
  EXPECT_FALSE(verdict(book, "Ann", "").isRefused());
  EXPECT_EQ(claimed(book, "Ann", "secret"), "The name Ann is yours. From now on, log in with this password.");
  EXPECT_EQ(claimed(book, "A N N", "other"), "Somebody has claimed the name already.");
  for (const char* name : {"Ann", "\xC4nn", " a.n.n"}) {
    EXPECT_EQ(verdict(book, name, "").reason(),
              "That name is claimed. Log in with its password, or choose another name.");
    EXPECT_TRUE(verdict(book, name, "other").isRefused());
    EXPECT_FALSE(verdict(book, name, "secret").isRefused());
  }
  EXPECT_FALSE(verdict(book, "Bob", "").isRefused());
  std::ifstream file(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), {}};
  EXPECT_EQ(bytes.find("secret"), std::string::npos);
}

TEST_F(RecordsTest, AClaimKeepsTheRecord) {
  Database database(path);
  database.add({once("Ann", 3)}, {"ann"}, today);
  EXPECT_EQ(database.claim("ann", "Ann", "hash", today), Database::Claim::made);
  database.add({once("Ann", 1)}, {"ann"}, today);
  EXPECT_EQ(database.deedsOf("ann").captures, 4);
  EXPECT_EQ(database.claimOf("ann"), "hash");
}

TEST_F(RecordsTest, AVerdictNamesTheClaimsThatANumberCouldLeadTo) {
  RecordBook book(*this, path);
  const std::string longest(32, 'a');
  const std::string cut = longest.substr(0, 30) + " 2";
  for (const std::string& name : {std::string("Ann"), std::string("Ann 2"), std::string("Anna 10"), std::string("Bob"),
                                  std::string("Anm"), cut}) {
    claimed(book, name, "secret");
  }
  book.add({{.client = 2, .name = "Ann 3", .captures = 2}}, true, 60'000);
  const auto claims = [&](const std::string& name, const std::string& password) {
    EXPECT_TRUE(book.verdict(1, name, password).isPending);
    finishWork();
    const NameVerdict answer = book.verdict(1, name, password);
    EXPECT_FALSE(answer.isPending);
    EXPECT_FALSE(answer.outcome.isRefused());
    book.left(1);
    return answer.claimed;
  };
  EXPECT_EQ(claims("Ann", "secret"), (std::vector<std::string>{"ann2", "annalo"}));
  EXPECT_EQ(claims("Ann 2", "secret"), std::vector<std::string>{});
  EXPECT_EQ(claims("Bo", ""), std::vector<std::string>{"bob"});
  EXPECT_EQ(claims("Cat", ""), std::vector<std::string>{});
  EXPECT_EQ(claims(longest, ""), std::vector<std::string>{std::string(30, 'a') + "2"});
}

TEST_F(RecordsTest, ForgetThePlayersSeenLongestAgo) {
  Database database(path, 3);
  EXPECT_EQ(database.claim("ann", "Ann", "hash", today - 9 * day), Database::Claim::made);
  database.add({once("Ann", 9)}, {"ann"}, today - 9 * day);
  database.add({once("Bob", 8)}, {"bob"}, today - 8 * day);
  database.add({once("Cat", 7)}, {"cat"}, today - 7 * day);
  database.add({once("Bob", 1)}, {"bob"}, today - 6 * day);
  database.add({once("Dan", 1)}, {"dan"}, today);
  EXPECT_EQ(names(database.top(10)), (std::vector<std::string>{"Ann", "Bob", "Dan"})) << "a claim is kept";
  EXPECT_EQ(names(database.topOfTheLastDays(10, today)), (std::vector<std::string>{"Ann", "Bob", "Dan"}));
  database.add({once("Cat", 2), once("Eve", 3)}, {"cat", "eve"}, today + 1);
  EXPECT_EQ(names(database.topOfTheLastDays(10, today)), (std::vector<std::string>{"Ann", "Eve", "Cat"}))
      << "Cat begins anew";
}

TEST_F(RecordsTest, OfAPlayerWhoHasDoneNothingArentStored) {
  RecordBook book(*this, path);
  book.add({{.client = 1, .name = "Ann", .joined = 60'000}}, false, 60'999);
  EXPECT_EQ(found(book, "Ann"), Deeds{});
  book.add({{.client = 2, .name = "Bob", .joined = 60'000}}, false, 61'000);
  EXPECT_EQ(found(book, "Bob"), (Deeds{.name = "Bob", .seconds = 1}));
}

TEST_F(RecordsTest, ABusyServerSaysSo) {
  RecordBook book(*this, path);
  isBusy = true;
  EXPECT_EQ(book.verdict(1, "Ann", "").outcome.reason(), "The server is busy. Try again in a moment.");
  EXPECT_FALSE(book.find("Ann", [](const std::optional<Deeds>&) {}));
  book.add({{.client = 1, .name = "Ann"}}, true, 60'000);
  EXPECT_EQ(lines.back(), "no records: " + path + ": too much is to be written");
}

TEST_F(RecordsTest, WithoutAFileNothingIsAsked) {
  RecordBook book(*this, "");
  book.add({{.client = 1, .name = "Ann"}}, true, 60'000);
  EXPECT_FALSE(book.verdict(1, "Ann", "").isPending);
  EXPECT_TRUE(work.empty());
}

}  // namespace
}  // namespace kelvora::server
