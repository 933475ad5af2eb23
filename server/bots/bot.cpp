#include "server/bots/bot.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "base/search.h"
#include "protocol/frames.h"
#include "protocol/rules.h"

namespace kelvora::server {

namespace {

constexpr Millis askAgain = 5'000;

}  // namespace

Bot::Bot(std::string name, SkillLevel level, std::uint32_t seed)
    : name_(std::move(name)), level_(level), mind_(skillOf(level), seed), chatter_(seed + 1) {}

std::string Bot::login(const std::string& password, PlayerColour colour, const std::string& version) const {
  return wire::toServer<wire::msgLogin>(name_, password, colour, version);
}

void Bot::hear(std::string_view frame, Millis now) {
  const auto message = wire::splitId(wire::textOf(frame));
  if (!message) return;
  switch (message->id) {
    case wire::msgLoginAccepted:
      if (const auto fields = wire::fromServer<wire::msgLoginAccepted>(message->fields)) {
        const auto& [colour, node, x, y] = *fields;
        node_ = node;
        begin(x.value, y.value, now);
      }
      return;
    case wire::msgPing:
      owesPingReply_ = true;
      return;
    case wire::msgTailCapture:
      if (const auto fields = wire::fromServer<wire::msgTailCapture>(message->fields)) {
        const auto& [winner, loser, x, y] = *fields;
        noticeCapture(winner, loser, {x.value, y.value}, now);
      }
      return;
    case wire::msgRoundOver:
      chatter_.notice(Occasion::roundOver, now);
      return die(now);
    case wire::msgAliveState:
      if (const auto fields = wire::fromServer<wire::msgAliveState>(message->fields)) {
        const auto& [node, alive] = *fields;
        if (node == node_) return alive != 0 ? rise(now) : die(now);
      }
      return;
    case wire::msgRespawn:
      if (wire::fromServer<wire::msgRespawn>(message->fields) == std::tuple(node_)) rise(now);
      return;
    default:
      return;
  }
}

void Bot::noticeCapture(std::int16_t winner, std::int16_t loser, Point vertex, Millis now) {
  if (winner == node_ && loser != node_) {
    chatter_.notice(Occasion::capture, now);
    mind_.triumph(now);
  }
  if (loser == node_) dooms_.push_back({winner, vertex});
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
    const PlayerView* winner = findBy(sight.players(), &PlayerView::node, doom.winner);
    if (!winner) continue;
    const auto vertex = std::find_if(winner->tail.begin(), winner->tail.end(),
                                     [&](Point point) { return length(point - doom.vertex) < 0.01; });
    if (vertex == winner->tail.end()) continue;
    const Millis age = winner->isRunning[extendedTailSlot] ? 0 : (winner->tail.end() - vertex - 1) * Sight::step;
    doom.landsAt = now + rules::vertexLifetime - age;
  }
  if (!anyOf(dooms_, [&](const Doom& doom) { return now >= doom.landsAt; })) return;
  chatter_.notice(Occasion::captured, now);
  die(now);
}

void Bot::tick(const Sight& sight, const PlayerView& self, Millis now, const Say& say) {
  if (!flight_) return;
  if (std::exchange(owesPingReply_, false)) {
    say(wire::toServer<wire::msgPingReply>(static_cast<float>(now % 86'400'000) / 1000));
    report(say);
  }
  if (const auto line = chatter_.line(now)) say(wire::toServer<wire::msgChat>(-1, *line));
  awaitDoom(sight, now);
  BotView view = sight.viewOf(self, skillOf(level_).reaction, now);
  view.isAlive = isAlive_;
  view.position = flight_->point();
  if (!isAlive_) actWhileDead(view, say);
  act(view, say);
}

void Bot::act(const BotView& view, const Say& say) {
  const Intent intent = mind_.think(view);
  if (intent.powerup) say(wire::toServer<wire::msgActivateRequest>(*intent.powerup));
  flight_->setBrakes(view.now < brakesUntil_ || intent.brakes);
  for (int i = 0; i < rules::framesPerReport; ++i) {
    if (flight_->step(intent.angle, intent.throttle, isAlive_, view.isRunning[turboSlot])) report(say);
  }
}

void Bot::report(const Say& say) const {
  say(wire::toServer<wire::msgPositionReport>(flight_->position().x, flight_->position().y));
}

void Bot::actWhileDead(const BotView& view, const Say& say) {
  if (view.now >= nextBuy_) {
    nextBuy_ = view.now + static_cast<Millis>(mind_.between(600, 1'500));
    if (const auto item = mind_.wantsToBuy(view)) say(wire::toServer<wire::msgBuyRequest>(*item));
  }
  if (view.now >= spawnAt_) {
    spawnAt_ = view.now + askAgain;
    say(wire::toServer<wire::msgSpawnRequest>());
  }
}

}  // namespace kelvora::server
