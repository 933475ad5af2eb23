#include "server/replays/roundPlayer.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "protocol/frames.h"
#include "protocol/rules.h"

namespace kelvora::server {

RoundPlayer::RoundPlayer(Moments round) : round_(std::move(round)), reader_(round_.bytes()) { rewind(); }

void RoundPlayer::rewind() {
  reader_ = Moments::Reader(round_.bytes());
  next_ = reader_.next();
  players_.clear();
  againAt_.reset();
  isOn_ = false;
}

void RoundPlayer::tick(Millis now, bool isWatched, const Send& toAll) {
  const Millis step = now - std::exchange(last_, now);
  if (!isWatched) {
    if (isOn_) rewind();
    return;
  }
  if (againAt_ && now >= *againAt_) {
    for (const auto& [node, player] : players_) toAll(wire::toClient<wire::msgPlayerLeft>(node));
    rewind();
  }
  if (!std::exchange(isOn_, true)) {
    begun_ = now;
  } else {
    begun_ += std::max<Millis>(0, step - maxStep);  // the server was suspended
  }
  for (std::size_t sent = 0; next_ && begun_ + next_->at <= now && sent < maxBurst; next_ = reader_.next()) {
    note(next_->frame);
    toAll(std::string(next_->frame));
    sent += next_->frame.size();
  }
  if (next_ || againAt_) return;
  againAt_ = now + pause;
  toAll(wire::toClient<wire::msgServerText>("The recording is over. It begins again in " +
                                            std::to_string(pause / 1'000) + " seconds."));
}

void RoundPlayer::show(const Send& toNewcomer) const {
  toNewcomer(wire::toClient<wire::msgServerText>("This is a recording."));
  for (const auto& [node, player] : players_) {
    toNewcomer(wire::toClient<wire::msgPlayerJoined>(node, player.colour, player.name, wire::NumberText{player.x},
                                                     wire::NumberText{player.y}, player.isAlive, player.kills));
    toNewcomer(wire::toClient<wire::msgFunds>(node, player.funds));
  }
}

void RoundPlayer::note(std::string_view frame) {
  const auto message = wire::splitId(wire::textOf(frame));
  const std::string_view fields = message->fields;
  const auto seen = [&](std::int16_t node) -> Seen* {
    const auto found = players_.find(node);
    return found == players_.end() ? nullptr : &found->second;
  };
  switch (message->id) {
    case wire::msgPlayerJoined: {
      const auto [node, colour, name, x, y, alive, kills] = *wire::fromServer<wire::msgPlayerJoined>(fields);
      if (players_.size() >= rules::colourCount) return;  // only in a forged file
      players_[node] = {.colour = colour,
                        .name = std::string(name),
                        .x = std::string(x.text),
                        .y = std::string(y.text),
                        .isAlive = alive == 1,
                        .kills = kills};
      return;
    }
    case wire::msgPlayerLeft:
      players_.erase(std::get<0>(*wire::fromServer<wire::msgPlayerLeft>(fields)));
      return;
    case wire::msgPosition: {
      const auto [node, x, y] = *wire::fromServer<wire::msgPosition>(fields);
      if (Seen* player = seen(node)) {
        player->x = x.text;
        player->y = y.text;
      }
      return;
    }
    case wire::msgTailCapture: {
      const auto [winner, loser, x, y] = *wire::fromServer<wire::msgTailCapture>(fields);
      if (Seen* player = seen(winner); player && player->kills < std::numeric_limits<std::int16_t>::max()) {
        ++player->kills;
      }
      if (Seen* player = seen(loser)) player->isAlive = false;
      return;
    }
    case wire::msgRespawn:
      if (Seen* player = seen(std::get<0>(*wire::fromServer<wire::msgRespawn>(fields)))) player->isAlive = true;
      return;
    case wire::msgFunds: {
      const auto [node, funds] = *wire::fromServer<wire::msgFunds>(fields);
      if (Seen* player = seen(node)) player->funds = funds.value;
      return;
    }
    case wire::msgRoundOver:
      for (auto& [node, player] : players_) player.isAlive = false;
      return;
    default:
      return;
  }
}

}  // namespace kelvora::server
