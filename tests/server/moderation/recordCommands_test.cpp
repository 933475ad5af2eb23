#include <filesystem>
#include <optional>
#include <random>

#include "tests/server/moderation/moderationTest.h"

namespace kelvora::server {
namespace {

TEST_F(ModerationTest, WithoutRecordsTheirCommandsSaySo) {
  login(ann, "Ann");
  for (const char* line : {"!top", "!stats", "!claim secret"}) {
    EXPECT_EQ(answerTo(ann, line), "This server keeps no records.") << line;
  }
}

/// The same with records in a file.
class RecordCommandsTest : public ModerationTest {
 protected:
  const std::filesystem::path folder =
      std::filesystem::temp_directory_path() / ("kelvora-commands-" + std::to_string(std::random_device{}()));
  std::optional<RecordBook> book;
  std::optional<Moderation> kept;

  void SetUp() override {
    std::filesystem::create_directory(folder);
    book.emplace(host, (folder / "records").native());
    kept.emplace(arena, bots, *book, host, ModerationSettings{});
    login(ann, "Ann", "0");
    login(bob, "Bob", "1");
  }
  void TearDown() override {
    book.reset();
    std::filesystem::remove_all(folder);
  }
  std::vector<std::string> run(ClientId client, const std::string& line) {
    got.clear();
    kept->run(client, line, now);
    host.finishWork();
    return textsTo(client);
  }
};

TEST_F(RecordCommandsTest, TopAndStatsTellWhatPlayersHaveDone) {
  EXPECT_EQ(run(ann, "!top"), std::vector<std::string>{"Nobody has a record yet."});
  book->add({{.client = bob, .name = "Bob", .captures = 7, .isWinner = true, .joined = 0},
             {.client = ann, .name = "Ann", .captures = 2, .joined = 0}},
            true, 7'500'000);
  const std::string bobs = "Bob: 7 captures and 1 win in 1 round, 2 h 5 min";
  EXPECT_EQ(run(ann, "!stats bob"), std::vector<std::string>{bobs});
  EXPECT_EQ(run(ann, "!stats"), std::vector<std::string>{"Ann: 2 captures and 0 wins in 1 round, 2 h 5 min"});
  EXPECT_EQ(run(ann, "!stats nobody"), std::vector<std::string>{"There is no record of that name."});
  EXPECT_EQ(run(ann, "!top").at(0), "1. " + bobs);
  arena.disconnected(bob);
  EXPECT_EQ(run(ann, "!stats BOB"), std::vector<std::string>{bobs}) << "of somebody who isn't here";
}

TEST_F(RecordCommandsTest, HelpListsThem) {
  EXPECT_EQ(run(ann, "!help"), std::vector<std::string>{"Commands: !help !who !vote !top !stats !claim. !help COMMAND "
                                                        "explains one."});
}

TEST_F(RecordCommandsTest, ANameIsClaimedOnceAMinuteByANetwork) {
  EXPECT_EQ(run(ann, "!claim"), std::vector<std::string>{"Type !claim and a password of up to 64 letters."});
  EXPECT_EQ(run(ann, "!claim " + std::string(65, 'x')).size(), 1U);
  EXPECT_EQ(run(ann, "!claim secret "),
            std::vector<std::string>{"The name Ann is yours. From now on, log in with this password."});
  EXPECT_EQ(run(ann, "!claim secret"), std::vector<std::string>{"You can claim one name a minute."});
  now += 60'000;
  EXPECT_EQ(run(ann, "!claim secret"), std::vector<std::string>{"Somebody has claimed the name already."});
  EXPECT_TRUE(book->verdict(9, "ann", "secret").isPending);
  host.finishWork();
  EXPECT_FALSE(book->verdict(9, "ann", "secret").outcome.isRefused());
}

}  // namespace
}  // namespace kelvora::server
