#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/outcome.h"
#include "server/moderation/timeText.h"

namespace kelvora::server {

/// A ban keeps a network out. A mute lets nobody read what its players write.
enum class PenaltyKind { ban, mute };

/// "ban" or "mute"
std::string_view wordFor(PenaltyKind kind);

struct Penalty {
  PenaltyKind kind = PenaltyKind::ban;
  std::string network{};
  Seconds end = never;
  std::string name{};    ///< of the player who got it; may be empty
  std::string reason{};  ///< may be empty
};

/// Bans and mutes: one of each per network. Texts are in code page 1252. As a file, they are lines in UTF-8 of the form
/// `ban 203.0.113.7 2026-11-22T14:00:00Z "Ann" the reason`, where name and reason may be missing.
class Penalties {
 public:
  static constexpr std::size_t maxCount = 1000;
  static constexpr std::size_t maxReason = 100;           ///< bytes; longer ones are cut
  static constexpr std::size_t maxRemarks = 64UL << 10U;  ///< bytes of comments and invalid lines

  /// Reads a file's text. Comments and invalid lines are kept for `text`. Returns a complaint for each invalid line,
  /// beginning with its number and a colon, but at most 20 and the number of the others.
  std::vector<std::string> read(std::string_view text, Seconds now);
  /// The text for the file.
  std::string text() const;

  /// Null if the network has none.
  const Penalty* find(PenaltyKind kind, std::string_view network, Seconds now) const;
  /// Replaces the network's penalty of this kind. Refused if there are too many.
  Outcome add(Penalty penalty, Seconds now);
  /// Removes those of the network or of the name. Returns the removed ones.
  std::vector<Penalty> remove(PenaltyKind kind, std::string_view networkOrName);
  /// Removes the network's penalty of this kind, if it has one.
  void lift(PenaltyKind kind, std::string_view network);
  const std::vector<Penalty>& all() const { return penalties_; }

 private:
  void forgetOver(Seconds now);

  std::vector<Penalty> penalties_;
  std::vector<std::string> remarks_;  // lines
};

}  // namespace kelvora::server
