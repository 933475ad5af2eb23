#include "server/bots/botKeeper.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/search.h"
#include "protocol/wireFormat.h"
#include "server/arena/names.h"

namespace kelvora::server {

namespace {

static_assert(BotSettings::maxCount < Arena::colourCount);

constexpr Millis maxDelay = 200;  // steps missed for longer are skipped

constexpr std::array names = {"Quillon", "Bramble", "Tindra", "Oskavel", "Marrow",  "Fennick", "Lumo", "Wexley",
                              "Zephine", "Gorbal",  "Pimm",   "Sarrin",  "Dovetta", "Kestor",  "Ullo", "Hesper"};

/// The level of a seat. Easy and stronger ones alternate, so that everybody finds an opponent. The hard one comes
/// fourth: a newcomer meets three bots, and a hard one among them would win every round.
SkillLevel levelOf(SkillLevel skill, std::size_t seat) {
  constexpr std::array mixture = {SkillLevel::easy, SkillLevel::normal, SkillLevel::easy, SkillLevel::hard,
                                  SkillLevel::normal};
  return skill == SkillLevel::mixed ? mixture[seat % mixture.size()] : skill;
}

}  // namespace

BotKeeper::BotKeeper(Arena& arena, BotSettings settings, std::string password, std::string version, std::uint32_t seed)
    : arena_(arena), password_(std::move(password)), version_(std::move(version)), random_(seed) {
  configure(settings, 0);
}

void BotKeeper::configure(BotSettings settings, Millis now) {
  settings.count = std::clamp(settings.count, 0, BotSettings::maxCount);
  settings_ = settings;
  const auto wanted = static_cast<std::size_t>(settings.count);
  if (wanted == 0) sight_.clear();  // nobody looks until there are bots again
  for (; seats_.size() > wanted; seats_.pop_back()) leave(seats_.back(), now);
  while (seats_.size() < wanted) seats_.push_back({});
  for (std::size_t i = 0; i < wanted; ++i) {
    const SkillLevel level = levelOf(settings.skill, i);
    if (seats_[i].level != level) leave(seats_[i], now);
    seats_[i].level = level;
  }
}

void BotKeeper::hear(ClientId client, std::string_view frame, Millis now) {
  if (Seat* seat = find(client); seat && seat->bot) seat->bot->hear(frame, now);
}

void BotKeeper::hangUp(ClientId client) {
  if (Seat* seat = find(client)) seat->isHungUp = true;
}

void BotKeeper::tick(Millis now) {
  if (seats_.empty() || now < next_) return;
  if (now - next_ > maxDelay) next_ = now;
  for (; next_ <= now; next_ += Sight::step) step(now);
}

void BotKeeper::step(Millis now) {
  sight_.add(arena_.players(now), now);
  if (people() == 0) {
    for (Seat& seat : seats_) leave(seat, now);
    sight_.clear();
    return;
  }
  makeRoom(now);
  fill(now);
  for (Seat& seat : seats_) {
    const PlayerView* self = seat.bot ? sight_.player(seat.client) : nullptr;
    if (!self) continue;
    seat.bot->tick(sight_, *self, now,
                   [&](const std::string& frame) { arena_.received(seat.client, wire::textOf(frame), now); });
  }
}

void BotKeeper::makeRoom(Millis now) {
  const std::vector<PlayerColour> wanted = arena_.wantedColours();
  for (Seat& seat : seats_) {
    const PlayerView* self = seat.bot ? sight_.player(seat.client) : nullptr;
    if (seat.isHungUp || (self && anyOf(wanted, [&](PlayerColour colour) { return colour == self->colour; })))
      leave(seat, now);
  }
}

void BotKeeper::fill(Millis now) {
  const std::size_t places = Arena::colourCount - std::min<std::size_t>(people(), Arena::colourCount);
  const std::size_t target = std::min(seats_.size(), places);
  for (auto seat = seats_.rbegin(); seat != seats_.rend() && count() > target; ++seat) leave(*seat, now);
  if (count() >= target || now < nextArrival_ || !arena_.wantedColours().empty()) return;
  const auto free = findIf(seats_, [&](const Seat& seat) { return !seat.bot && now >= seat.backAt; });
  if (!free) return;
  join(*free, now);
  nextArrival_ = now + std::uniform_int_distribution(300, 1'200)(random_);
}

void BotKeeper::join(Seat& seat, Millis now) {
  seat.name = freshName();
  seat.client = ++lastClient_;
  seat.isHungUp = false;
  seat.bot.emplace(seat.name, seat.level, static_cast<std::uint32_t>(random_()));
  arena_.connected(seat.client, now);
  const auto colour = static_cast<PlayerColour>(std::uniform_int_distribution(0, Arena::colourCount - 1)(random_));
  arena_.received(seat.client, wire::textOf(seat.bot->login(password_, colour, version_)), now);
}

void BotKeeper::leave(Seat& seat, Millis now) {
  if (!seat.bot) return;
  seat.bot.reset();
  seat.backAt = now + std::uniform_int_distribution(2'000, 5'000)(random_);
  arena_.disconnected(seat.client);
}

BotKeeper::Seat* BotKeeper::find(ClientId client) { return findBy(seats_, &Seat::client, client); }

std::size_t BotKeeper::count() const {
  return static_cast<std::size_t>(
      std::count_if(seats_.begin(), seats_.end(), [](const Seat& seat) { return seat.bot.has_value(); }));
}

std::size_t BotKeeper::people() const {
  const auto& players = sight_.players();
  return static_cast<std::size_t>(
      std::count_if(players.begin(), players.end(), [](const PlayerView& player) { return !isBot(player.client); }));
}

std::string BotKeeper::freshName() {
  const auto isTaken = [&](const char* name) {
    const auto looksAlike = [&](const auto& entry) { return skeletonOf(entry.name) == skeletonOf(name); };
    return anyOf(sight_.players(), looksAlike) || anyOf(seats_, looksAlike);
  };
  std::vector<std::string> free;
  for (const char* name : names) {
    if (!isTaken(name)) free.emplace_back(name);
  }
  return free[std::uniform_int_distribution(std::size_t{0}, free.size() - 1)(random_)];
}

}  // namespace kelvora::server
