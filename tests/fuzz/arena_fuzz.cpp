// Hostile clients in one arena with bots.

#include <array>
#include <map>
#include <set>
#include <string>

#include "protocol/frameReader.h"
#include "protocol/wireFormat.h"
#include "server/arena/arena.h"
#include "server/arena/names.h"
#include "server/bots/botKeeper.h"
#include "tests/fuzz/input.h"

namespace kelvora::server {
namespace {

using fuzz::Input;
using fuzz::require;

/// Independent of the build's version, so that the logins in the corpus stay valid after a release.
constexpr const char* version = "9.9.9";

/// Connects up to six people, one of whom may watch, and the bots without sockets. Splits incoming bytes into frames
/// and checks what is sent.
class Table : private ArenaOutput {
 public:
  Table(int bots, const std::string& password, const ArenaRules& rules)
      : hasSpectator_(rules.spectators > 0),
        arena_(*this, version, password, 1, rules),
        keeper_(arena_, {.count = bots}, password, version, 1) {}

  void connect(std::size_t seat) {
    leave(seat);
    people_[seat] = {.client = ++lastClient_};
    sentTo_[lastClient_] = 0;
    const bool watches = seat == 5 && hasSpectator_;
    arena_.connected(lastClient_, now_, watches ? Role::spectator : Role::player);
  }
  void say(std::size_t seat, std::string_view bytes) {
    Person& person = people_[seat];
    if (person.client == 0) connect(seat);
    const bool isSound = person.reader.read(bytes, [&](std::string_view text) {
      if (!hungUp_.contains(person.client)) arena_.received(person.client, text, now_);
    });
    if (!isSound) leave(seat);
    letGo();
  }
  void leave(std::size_t seat) {
    const ClientId client = people_[seat].client;
    if (client == 0) return;
    people_[seat] = {};
    hungUp_.erase(client);
    sentTo_.erase(client);
    arena_.disconnected(client);
  }
  void pass(Millis time) {
    for (const Millis end = now_ + time; now_ < end;) {
      now_ += 40;
      keeper_.tick(now_);
      arena_.tick(now_);
      letGo();
    }
    check();
  }

 private:
  struct Person {
    ClientId client = 0;
    wire::FrameReader reader{};
  };

  void send(ClientId client, const std::string& frame) override {
    // A whole frame without a delimiter that would end it early.
    require(frame.size() >= 3 && frame.front() == wire::frameStart && frame.back() == wire::frameEnd);
    require(frame.find(wire::frameStart, 1) == std::string::npos && frame.find(wire::frameEnd) == frame.size() - 1);
    require(frame.size() <= wire::FrameReader::maxFrameLength + 2);
    if (isBot(client)) return keeper_.hear(client, frame, now_);
    const auto found = sentTo_.find(client);
    require(found != sentTo_.end());
    found->second += frame.size();
  }
  void hangUp(ClientId client) override {
    if (isBot(client)) return keeper_.hangUp(client);
    hungUp_.insert(client);
  }
  void log(const std::string& line) override {
    // A single line of plain text, so that nobody can forge log lines.
    for (const char c : line) require(static_cast<unsigned char>(c) >= 32 && static_cast<unsigned char>(c) != 127);
  }
  void letGo() {
    for (std::size_t seat = 0; seat < people_.size(); ++seat) {
      if (hungUp_.contains(people_[seat].client)) leave(seat);
    }
  }
  void check() {
    const auto players = arena_.players(now_);
    require(players.size() <= Arena::colourCount);
    std::set<int> colours;
    std::set<int> nodes;
    for (const PlayerView& player : players) {
      require(player.colour >= 0 && player.colour < Arena::colourCount && colours.insert(player.colour).second);
      require(player.node > 0 && nodes.insert(player.node).second);
      require(player.position.x >= 0 && player.position.x <= 100'000);
      require(player.position.y >= 0 && player.position.y <= 100'000);
      require(!player.name.empty() && player.name.size() <= maxNameLength);
      require(player.funds >= 0 && player.tail.size() < 100'000);
      int stock = 0;
      for (const int count : player.stock) require((stock += count) >= 0 && count >= 0);
      require(stock <= 25);
    }
  }

  const bool hasSpectator_;
  Millis now_ = 5'000;
  std::array<Person, 6> people_;
  std::map<ClientId, std::size_t> sentTo_;
  std::set<ClientId> hungUp_;
  ClientId lastClient_ = 0;
  Arena arena_;
  BotKeeper keeper_;
};

void run(Input input) {
  const std::uint8_t flags = input.byte();
  const ArenaRules rules{.roundMs = 20'000,
                         .captureGoal = 2,
                         .intermissionMs = 1'000,
                         .respawnWaitMs = 500,
                         .incomePerMinute = 6'000,
                         .coach = true,
                         .speedFactor = (flags & 8) != 0 ? 3.0 : 0.0,
                         .spectators = (flags & 16) != 0 ? 1 : 0};
  Table table(flags % 6, (flags & 64) != 0 ? "sesame" : "", rules);
  // After byte 255 comes an action and its target. Everything else is sent by the current client.
  std::size_t seat = 0;
  int ticks = 0;
  while (!input.isEmpty()) {
    table.say(seat, input.upTo('\xFF'));
    if (input.isEmpty()) break;
    const std::uint8_t what = input.byte();
    if (what < 128) {
      seat = what % 6;
      if (what >= 64) table.leave(seat);
    } else if (ticks < 500) {
      const int count = what == 255 ? 100 : what - 127;
      table.pass(Millis{40} * count);
      ticks += count;
    }
  }
  table.pass(4'000);
}

}  // namespace
}  // namespace kelvora::server

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kelvora::server::run({data, size});
  return 0;
}
