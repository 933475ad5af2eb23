#include "server/bots/bot.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "protocol/wireFormat.h"

namespace kelvora::server {

namespace {

constexpr int framesPerTick = 4;
constexpr Millis askAgain = 5'000;
constexpr Millis vertexLife = 2'000;

std::string text(std::int16_t id, const std::vector<std::string>& fields) {
  const std::string frame = wire::buildFrame(id, fields);
  return frame.substr(1, frame.size() - 2);
}

std::int16_t number(std::string_view field) { return static_cast<std::int16_t>(readNumber(field)); }

}  // namespace

Bot::Bot(std::string name, SkillLevel level, std::uint32_t seed)
    : name_(std::move(name)), level_(level), mind_(skillOf(level), seed), chatter_(seed + 1) {}

std::string Bot::login(const std::string& password, int colour, const std::string& version) const {
  return text(wire::msgLogin, {name_, password, std::to_string(colour), version});
}

void Bot::hear(std::string_view frame, Millis now) {
  if (frame.size() < 3) return;
  const int id = static_cast<unsigned char>(frame[1]);
  const std::vector<std::string_view> fields = wire::splitFields(frame.substr(2, frame.size() - 3));
  const auto isMine = [&](std::size_t field) { return fields.size() > field && number(fields[field]) == node_; };
  switch (id) {
    case wire::msgLoginAccepted:
      if (fields.size() < 4) return;
      node_ = number(fields[1]);
      return begin(readNumber(fields[2]), readNumber(fields[3]), now);
    case wire::msgPing:
      owesPingReply_ = true;
      return;
    case wire::msgTailCapture:
      if (fields.size() < 4) return;
      if (isMine(0) && !isMine(1)) {
        chatter_.notice(Occasion::capture, now);
        mind_.triumph(now);
      }
      if (isMine(1)) dooms_.push_back({number(fields[0]), {readNumber(fields[2]), readNumber(fields[3])}});
      return;
    case wire::msgRoundOver:
      chatter_.notice(Occasion::roundOver, now);
      return die(now);
    case wire::msgAliveState:
      if (isMine(0) && fields.size() > 1) return number(fields[1]) != 0 ? rise(now) : die(now);
      return;
    case wire::msgRespawn:
      if (isMine(0)) rise(now);
      return;
    default:
      return;
  }
}

void Bot::begin(double x, double y, Millis now) {
  flight_.emplace(Vector{static_cast<float>(x), static_cast<float>(y)});
  rise(now);
  chatter_.notice(Occasion::arrival, now);
}

void Bot::die(Millis now) {
  dooms_.clear();
  if (!std::exchange(isAlive_, false)) return;
  if (flight_) flight_->setBrakes(true);
  const auto moment = [&](double low, double high) { return now + static_cast<Millis>(mind_.between(low, high)); };
  brakesUntil_ = moment(800, 2'500);
  spawnAt_ = moment(1'500, 4'500);
  nextBuy_ = moment(700, 1'500);
}

void Bot::rise(Millis now) {
  dooms_.clear();
  isAlive_ = true;
  mind_.forget();
  flight_->setBrakes(true);
  const bool isSlow = level_ == SkillLevel::easy;
  brakesUntil_ = now + static_cast<Millis>(isSlow ? mind_.between(700, 2'000) : mind_.between(250, 800));
}

void Bot::awaitDoom(const Sight& sight, Millis now) {
  // A client shows a capture when the named vertex of the tail expires, or at once if there is none. Until then its
  // player flies on. The winner's death changes nothing.
  for (Doom& doom : dooms_) {
    const auto& players = sight.players();
    const auto winner = std::ranges::find(players, doom.winner, &PlayerView::node);
    if (winner == players.end()) continue;
    const auto vertex =
        std::ranges::find_if(winner->tail, [&](Point point) { return length(point - doom.vertex) < 0.01; });
    if (vertex == winner->tail.end()) continue;
    const Millis age = winner->isRunning[extendedTailSlot] ? 0 : (winner->tail.end() - vertex - 1) * Sight::step;
    doom.landsAt = now + vertexLife - age;
  }
  if (!std::ranges::any_of(dooms_, [&](const Doom& doom) { return now >= doom.landsAt; })) return;
  chatter_.notice(Occasion::captured, now);
  die(now);
}

void Bot::tick(const Sight& sight, const PlayerView& self, Millis now, const Say& say) {
  if (!flight_) return;
  if (std::exchange(owesPingReply_, false)) {
    say(text(wire::msgPingReply, {numberText(static_cast<float>(now % 86'400'000) / 1000)}));
    say(text(wire::msgPositionReport, {numberText(flight_->position().x), numberText(flight_->position().y)}));
  }
  if (const auto line = chatter_.line(now)) say(text(wire::msgChat, {"-1", *line}));
  awaitDoom(sight, now);
  BotView view = sight.viewOf(self, skillOf(level_).reaction, now);
  view.isAlive = isAlive_;
  view.position = flight_->point();
  if (!isAlive_) beDead(view, say);
  act(view, say);
}

void Bot::act(const BotView& view, const Say& say) {
  const Intent intent = mind_.think(view);
  if (intent.powerup) say(text(wire::msgActivateRequest, {std::to_string(*intent.powerup)}));
  flight_->setBrakes(view.now < brakesUntil_ || intent.brakes);
  for (int i = 0; i < framesPerTick; ++i) {
    if (!flight_->step(intent.angle, intent.throttle, isAlive_, view.isRunning[turboSlot])) continue;
    say(text(wire::msgPositionReport, {numberText(flight_->position().x), numberText(flight_->position().y)}));
  }
}

void Bot::beDead(const BotView& view, const Say& say) {
  if (view.now >= nextBuy_) {
    nextBuy_ = view.now + static_cast<Millis>(mind_.between(600, 1'500));
    if (const auto item = mind_.wantsToBuy(view)) say(text(wire::msgBuyRequest, {std::to_string(*item)}));
  }
  if (view.now >= spawnAt_) {
    spawnAt_ = view.now + askAgain;
    say(text(wire::msgSpawnRequest, {""}));
  }
}

}  // namespace kelvora::server
