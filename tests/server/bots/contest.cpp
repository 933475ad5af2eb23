#include "tests/server/bots/contest.h"

#include <optional>
#include <utility>

#include "base/text.h"
#include "generated/version.h"
#include "protocol/frames.h"

namespace kelvora::server {

/// A beginner's client. Learns of a death at once, and requests a new life after two seconds.
class Contest::Person {
 public:
  explicit Person(std::uint32_t seed) : hand_(seed) {}

  void hear(std::string_view frame, Millis now) {
    const WireMessage message = messageOf(frame);
    if (message.id != wire::msgLoginAccepted) return;
    flight_.emplace(Vector{static_cast<float>(readNumber(message.fields.at(2))),
                           static_cast<float>(readNumber(message.fields.at(3)))});
    wakesAt_ = now + 500;
  }
  void tick(const Sight& sight, const PlayerView& self, Millis now, const Bot::Say& say) {
    if (!self.isAlive && !std::exchange(wasDead_, true)) asksAt_ = now + 2'000;
    if (self.isAlive && std::exchange(wasDead_, false)) wakesAt_ = now + 500;
    if (wasDead_ && now >= asksAt_) {
      say(wire::toServer<wire::msgSpawnRequest>());
      asksAt_ = now + 5'000;
    }
    const Intent intent = hand_.think(sight.viewOf(self, Beginner::reaction, now));
    flight_->setBrakes(wasDead_ || now < wakesAt_);
    for (int i = 0; i < 4; ++i) {
      if (!flight_->step(intent.angle, intent.throttle, self.isAlive, false)) continue;
      say(wire::toServer<wire::msgPositionReport>(flight_->position().x, flight_->position().y));
    }
  }

 private:
  Beginner hand_;
  std::optional<Flight> flight_;
  bool wasDead_ = false;
  Millis asksAt_ = 0;
  Millis wakesAt_ = 0;
};

Contest::Contest(std::uint32_t seed, const ArenaRules& rules)
    : seed_(seed), arena_(*this, KELVORA_VERSION, "", seed, rules) {}

Contest::~Contest() = default;

int Contest::join(Seat seat, const std::string& login) {
  seats_.push_back(std::move(seat));
  const int number = static_cast<int>(seats_.size());
  arena_.connected(static_cast<ClientId>(number), now_);
  say(number, login);
  return number;
}

int Contest::addBot(SkillLevel level) {
  const auto number = static_cast<std::uint32_t>(seats_.size()) + 1;
  Seat seat{std::make_unique<Bot>("Bot" + std::to_string(number), level, seed_ * 100 + number), nullptr};
  const std::string login = seat.bot->login("", redPlayer, KELVORA_VERSION);
  return join(std::move(seat), login);
}

int Contest::addBeginner() {
  const auto number = static_cast<std::uint32_t>(seats_.size()) + 1;
  return join({nullptr, std::make_unique<Person>(seed_ * 100 + number)},
              wire::toServer<wire::msgLogin>("Beginner", "", 0, KELVORA_VERSION));
}

void Contest::pass(Millis time) {
  for (const Millis end = now_ + time; now_ < end;) {
    now_ += Sight::step;
    arena_.tick(now_);
    sight_.add(arena_.players(now_), now_);
    for (int number = 1; number <= static_cast<int>(seats_.size()); ++number) {
      const Seat& seat = seats_[static_cast<std::size_t>(number) - 1];
      const PlayerView* self = sight_.player(static_cast<ClientId>(number));
      if (!self) continue;
      const Bot::Say speak = [&](const std::string& frame) { say(number, frame); };
      if (seat.bot) seat.bot->tick(sight_, *self, now_, speak);
      if (seat.person) seat.person->tick(sight_, *self, now_, speak);
    }
  }
}

void Contest::say(int number, const std::string& frame) {
  if (isListening_) said_.push_back({number, now_, messageOf(frame)});
  arena_.received(static_cast<ClientId>(number), wire::textOf(frame), now_);
}

void Contest::send(ClientId client, const std::string& frame) {
  const int number = static_cast<int>(client);
  const auto [id, fields] = messageOf(frame);
  ++sent_[{number, id}];
  const Seat& seat = seats_[client - 1];
  if (id == wire::msgLoginAccepted) nodes_[fields.at(1)] = number;
  if (id == wire::msgTailCapture && number == 1) {
    const int winner = numberOf(fields.at(0));
    ++captures_[{winner, numberOf(fields.at(1))}];
    firstCaptures_.insert({winner, now_ - begun_});
  }
  if (id == wire::msgRoundOver && number == 1) results_.push_back(fields.at(0));
  if (seat.bot) seat.bot->hear(frame, now_);
  if (seat.person) seat.person->hear(frame, now_);
}

int Contest::numberOf(std::string_view node) const {
  const auto found = nodes_.find(node);
  return found == nodes_.end() ? 0 : found->second;
}

int Contest::captures(int winner, int loser) const {
  const auto found = captures_.find({winner, loser});
  return found == captures_.end() ? 0 : found->second;
}

Millis Contest::firstCapture(int winner) const {
  const auto found = firstCaptures_.find(winner);
  return found == firstCaptures_.end() ? -1 : found->second;
}

int Contest::sent(int number, int id) const {
  const auto found = sent_.find({number, id});
  return found == sent_.end() ? 0 : found->second;
}

}  // namespace kelvora::server
