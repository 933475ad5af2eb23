#include "server/arena/rounds.h"

#include <utility>

#include "base/search.h"
#include "protocol/frames.h"
#include "server/arena/plainText.h"

namespace kelvora::server {

namespace {

std::string nextRoundText(Millis wait) { return "The next round begins in " + secondsText(wait) + "."; }

}  // namespace

std::string secondsText(Millis time) { return counted((time + 999) / 1000, "second"); }

Rounds::Rounds(Roster& roster, Economy& economy, const ArenaRules& rules)
    : roster_(roster),
      economy_(economy),
      captureGoal_(rules.captureGoal),
      survivalCredits_(rules.survivalCredits),
      clock_(rules.roundMs, rules.intermissionMs) {}

void Rounds::prepareFor(ClientId newcomer, Millis now) {
  // Nobody is left to finish the previous round.
  if (roster_.players().empty()) {
    clock_.beginAnew();
    ++count_;
  }
  if (!isBot(newcomer) && !roster_.hasPeople()) clockSet_ = now;
}

void Rounds::explainIntermission(const Player& newcomer) const {
  // The login has made the player alive, and no other message opens the store for a dead player.
  roster_.sendTo(newcomer.client, wire::toClient<wire::msgRoundOver>(nextRoundText(clock_.left())));
  sendDead(newcomer);
}

void Rounds::endIfWon() {
  if (!clock_.isRunning() || captureGoal_ <= 0) return;
  const auto hasWon = [&](const auto& entry) { return entry.second.roundCaptures >= captureGoal_; };
  if (anyOf(roster_.players(), hasWon)) end();
}

void Rounds::passTime(Millis now) {
  const Millis time = now - std::exchange(clockSet_, now);
  if (!roster_.hasPeople()) return;
  clock_.pass(time);
  if (clock_.left() > 0) return;
  if (clock_.isRunning()) {
    end();
  } else {
    begin();
  }
}

void Rounds::endNow() {
  if (clock_.isRunning()) end();
}

void Rounds::restart() {
  const bool wasRunning = clock_.isRunning();
  clock_.beginAnew();
  if (wasRunning) {
    roster_.reportScores(nullptr);
    stop("The round begins again.");
  }
  welcome();
}

void Rounds::begin() {
  clock_.turnOver();
  welcome();
}

void Rounds::welcome() {
  ++count_;
  for (auto& [client, player] : roster_.players()) player.roundCaptures = 0;
  roster_.tellAll("A new round has begun. Press Spawn to play.");
}

void Rounds::end() {
  const Player* best = winner();
  const std::string text = best == nullptr
                               ? "The round is over. Nobody has captured anybody."
                               : best->name + " wins the round with " + counted(best->roundCaptures, "capture") + "!";
  roster_.reportScores(best);
  roster_.log("round over: " + printable(text));
  for (auto& [client, player] : roster_.players()) {
    if (player.isAlive) economy_.credit(player, Entry::survival, survivalCredits_);
  }
  clock_.turnOver();
  stop(text);
}

void Rounds::stop(const std::string& text) {
  for (auto& [client, player] : roster_.players()) {
    player.isAlive = false;
    player.isOffered = true;  // the next round's first message does that
    player.tail.clear();
  }
  roster_.sendToAll(wire::toClient<wire::msgRoundOver>(text));
  if (!clock_.isRunning() && clock_.left() > 0) roster_.tellAll(nextRoundText(clock_.left()));
  // A client with an open store ignores the end of the round, but not this.
  for (const auto& [client, player] : roster_.players()) sendDead(player);
}

const Player* Rounds::winner() const {
  const Player* best = nullptr;
  const auto rank = [](const Player& player) { return std::pair(player.roundCaptures, -player.lastCapture); };
  for (const auto& [client, player] : roster_.players()) {
    if (player.roundCaptures == 0) continue;
    if (best == nullptr || rank(player) > rank(*best)) best = &player;
  }
  return best;
}

void Rounds::sendDead(const Player& player) const {
  roster_.sendTo(player.client, wire::toClient<wire::msgAliveState>(player.node, false));
}

}  // namespace kelvora::server
