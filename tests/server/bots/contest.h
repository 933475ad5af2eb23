#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "server/arena/arena.h"
#include "server/bots/bot.h"
#include "tests/server/bots/beginner.h"
#include "tests/support/wireMessage.h"

namespace kelvora::server {

/// An arena whose clients are bots and scripted beginners, on a clock set by hand. Players are numbered in the order in
/// which they were added.
class Contest : private ArenaOutput {
 public:
  explicit Contest(std::uint32_t seed, const ArenaRules& rules = {});
  ~Contest() override;

  int addBot(SkillLevel level);
  int addBeginner();

  void pass(Millis time);

  Arena& arena() { return arena_; }
  Millis now() const { return now_; }
  Millis begun() const { return begun_; }
  const PlayerView& player(int number) const { return *sight_.player(static_cast<ClientId>(number)); }
  const Sight& sight() const { return sight_; }
  int captures(int winner, int loser) const;
  /// When a player first captured somebody, in ms since the beginning; -1 if never.
  Millis firstCapture(int winner) const;
  /// Frames sent to a player, by id.
  int sent(int number, int id) const;
  /// The players' messages, oldest first.
  struct Said {
    int player;
    Millis at;
    WireMessage message;
  };
  const std::vector<Said>& said() const { return said_; }
  /// Records messages from now on.
  void listen() { isListening_ = true; }
  /// The arena's log.
  const std::vector<std::string>& logged() const { return logged_; }
  std::vector<std::string> roundResults() const { return results_; }

 private:
  class Person;
  struct Seat {
    std::unique_ptr<Bot> bot;
    std::unique_ptr<Person> person;
  };

  void send(ClientId client, const std::string& frame) override;
  void hangUp(ClientId) override {}
  void log(const std::string& line) override { logged_.push_back(line); }
  int join(Seat seat, const std::string& login);
  void say(int number, const std::string& frame);
  int numberOf(std::string_view node) const;

  static constexpr Millis begun_ = 5'000;
  Millis now_ = begun_;
  std::uint32_t seed_;
  Arena arena_;
  Sight sight_;
  std::vector<Seat> seats_;  // number - 1
  std::map<std::string, int, std::less<>> nodes_;
  std::map<std::pair<int, int>, int> captures_;
  std::map<int, Millis> firstCaptures_;
  std::map<std::pair<int, int>, int> sent_;
  std::vector<Said> said_;
  std::vector<std::string> logged_;
  std::vector<std::string> results_;
  bool isListening_ = false;
};

}  // namespace kelvora::server
