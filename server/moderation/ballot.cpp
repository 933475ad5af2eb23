#include "server/moderation/ballot.h"

#include <set>
#include <utility>

namespace kelvora::server {

Outcome Ballot::begin(const PlayerView& starter, Motion motion, Millis now) {
  if (vote_ && vote_->motion() == motion) return agree(starter);
  if (vote_) return Outcome::refused("There is a vote already: " + vote_->motion().text() + ".");
  const std::string network = host_.network(starter.client);
  if (!starts_.allows(network, now)) return Outcome::refused("You can start one vote a minute.");
  vote_.emplace(std::move(motion), now);
  vote_->cast(network);
  told_ = 1;
  const Count state = count(now);
  if (state.votes < state.needed) {
    arena_.tellAll(starter.name + " wants to " + vote_->motion().text() + ". Type !vote yes within " +
                   std::to_string(Vote::timeLimit / 1'000) + " seconds: " + std::to_string(state.votes) + " of " +
                   std::to_string(state.needed) + " votes.");
  }
  return Outcome::done();
}

Outcome Ballot::agree(const PlayerView& voter) {
  if (!vote_) return Outcome::refused("There is no vote. !help vote tells how to start one.");
  if (!vote_->cast(host_.network(voter.client))) return Outcome::refused("Your network has voted already.");
  return Outcome::done();
}

std::optional<Motion> Ballot::passed(Millis now) {
  if (!vote_) return std::nullopt;
  const auto end = [&](const std::string& how) {
    arena_.tellAll("The vote to " + vote_->motion().text() + " has " + how + ".");
    return std::exchange(vote_, std::nullopt);
  };
  const Count state = count(now);
  if (state.votes >= state.needed) return end("passed")->motion();
  if (vote_->isOver(now)) {
    end("failed");
  } else if (state.votes > told_) {
    arena_.tellAll("The vote to " + vote_->motion().text() + ": " + std::to_string(state.votes) + " of " +
                   std::to_string(state.needed) + " votes.");
    told_ = state.votes;
  }
  return std::nullopt;
}

Ballot::Count Ballot::count(Millis now) const {
  std::set<std::string> networks;
  int people = 0;
  for (const PlayerView& player : arena_.players(now)) {
    if (isBot(player.client)) continue;
    ++people;
    networks.insert(host_.network(player.client));
  }
  return {vote_->votes(networks), Vote::needed(people)};
}

}  // namespace kelvora::server
