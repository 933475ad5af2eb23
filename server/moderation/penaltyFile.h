#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "server/moderation/host.h"
#include "server/moderation/penalties.h"

namespace kelvora::server {

/// Bans and mutes in a file, which is replaced after each change.
class PenaltyFile {
 public:
  static constexpr std::size_t maxSize = 1024UL << 10U;  ///< bytes
  static constexpr Seconds retryAfter = 60;              ///< a failed replacement

  /// Throws std::runtime_error if the file can't be read although it exists, or if its folder is missing. Without a
  /// path nothing is kept.
  PenaltyFile(ModerationHost& host, std::string path);
  PenaltyFile(const PenaltyFile&) = delete;
  PenaltyFile& operator=(const PenaltyFile&) = delete;
  /// Writes what hasn't been written yet, and logs it if that fails. No work may be running aside any more.
  ~PenaltyFile();

  /// Reads the file again. Keeps what is known if it can't be read, and always what hasn't been written yet.
  void reread();
  /// Retries a failed replacement when due.
  void tick();

  const Penalties& penalties() const { return penalties_; }
  const Penalty* find(PenaltyKind kind, std::string_view network) const;
  Outcome add(Penalty penalty);
  std::vector<Penalty> remove(PenaltyKind kind, std::string_view networkOrName);

 private:
  /// Returns the error; empty if there was none.
  std::string read();
  void restoreUnsaved();
  void save();
  void concludeSaving(const std::string& error);

  /// By kind and network. `nullopt` is a penalty that has been lifted.
  using Changes = std::map<std::pair<PenaltyKind, std::string>, std::optional<Penalty>>;

  ModerationHost& host_;
  const std::string path_;
  Penalties penalties_;
  Changes unsaved_;  // what the file lacks
  Changes saving_;   // what is being written; empty if nothing is
  Seconds retryAt_ = 0;
};

}  // namespace kelvora::server
