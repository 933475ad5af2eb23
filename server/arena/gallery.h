#pragma once

#include "protocol/wireFormat.h"
#include "server/arena/roster.h"

namespace kelvora::server {

/// The rules for spectators. Their clients show the game from a ghost, which nobody else sees, so the arena doesn't
/// even keep its position.
class Gallery {
 public:
  Gallery(Roster& roster, int capacity) : roster_(roster), capacity_(static_cast<std::size_t>(capacity)) {}

  bool isFull() const { return roster_.spectators().size() >= capacity_; }
  /// Handles a spectator's message: relays chat to the other spectators, and refuses to let the sender play.
  void received(Spectator& spectator, const wire::Incoming& message, Millis now);
  /// Sends all spectators a frame.
  void show(const std::string& frame) const;
  void tick(Millis now);

 private:
  Roster& roster_;
  const std::size_t capacity_;
};

}  // namespace kelvora::server
