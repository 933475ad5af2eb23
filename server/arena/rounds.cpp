// Rounds and the intermissions between them.

#include <algorithm>
#include <utility>

#include "network/wire/wireFormat.h"
#include "server/arena/arena.h"
#include "server/arena/plainText.h"

namespace kelvora::server {

namespace {

std::string counted(std::int64_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

}  // namespace

std::string Arena::secondsText(Millis time) { return counted((time + 999) / 1000, "second"); }

void Arena::passTime(Millis now) {
  const Millis time = now - std::exchange(clockSet_, now);
  if (!hasPeople()) return;
  clock_.pass(time);
  if (clock_.left() > 0) return;
  if (clock_.isRunning()) {
    endRound();
  } else {
    beginRound();
  }
}

void Arena::endRoundIfWon() {
  if (!clock_.isRunning() || rules_.captureGoal <= 0) return;
  const std::vector<Player*> players = inGame();
  if (std::ranges::any_of(players, [&](const Player* player) { return player->roundCaptures >= rules_.captureGoal; })) {
    endRound();
  }
}

void Arena::endRound() {
  const std::string result = roundResult();
  output_.log("round over: " + printable(result));
  for (Player* player : inGame()) {
    if (player->isAlive) credit(*player, Entry::survival, rules_.survivalCredits);
  }
  for (Player* player : inGame()) {
    player->isAlive = false;
    player->isOffered = true;  // the next round's first words do that
    player->tail.clear();
  }
  clock_.turnOver();
  sendToAll(wire::msgRoundOver, {result});
  if (clock_.left() > 0) {
    sendToAll(wire::msgServerText, {"The next round begins in " + secondsText(clock_.left()) + "."});
  }
  // A client whose store is open takes no notice of that, but of this.
  for (const auto& [client, state] : clients_) {
    if (state.player) sendDead(client, *state.player);
  }
}

std::string Arena::roundResult() const {
  const Player* best = nullptr;
  for (const auto& [client, state] : clients_) {
    if (!state.player || state.player->roundCaptures == 0) continue;
    const auto rank = [](const Player& player) { return std::pair(player.roundCaptures, -player.lastCapture); };
    if (!best || rank(*state.player) > rank(*best)) best = &*state.player;
  }
  if (!best) return "The round is over. Nobody has captured anybody.";
  return best->name + " wins the round with " + counted(best->roundCaptures, "capture") + "!";
}

void Arena::beginRound() {
  clock_.turnOver();
  for (Player* player : inGame()) player->roundCaptures = 0;
  sendToAll(wire::msgServerText, {"A new round has begun. Press Spawn to play."});
}

void Arena::sendDead(ClientId client, const Player& player) {
  sendTo(client, wire::msgAliveState, {std::to_string(player.node), "0"});
}

}  // namespace kelvora::server
