#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace kelvora::server {

/// A player's record. Names are in code page 1252.
struct Deeds {
  std::string name{};
  std::int64_t rounds = 0;
  std::int64_t captures = 0;
  std::int64_t wins = 0;
  std::int64_t seconds = 0;

  friend bool operator==(const Deeds&, const Deeds&) = default;
};

/// The file can't be opened, read or written.
struct DatabaseError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The deeds of all players, in total and per day, in an SQLite file that several servers may share. Names with the
/// same key belong to the same player. All functions wait for the disk and throw DatabaseError. One thread at a time
/// may use it.
class Database {
 public:
  static constexpr int daysKept = 30;
  static constexpr int usualPlayers = 100'000;
  static constexpr int maxClaims = 10'000;

  /// False on Windows, where it can't be opened.
  static bool isSupported();

  /// Opens or creates the file. Beyond `maxPlayers`, it forgets the players seen longest ago, unless claimed.
  explicit Database(const std::string& path, int maxPlayers = usualPlayers);
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  ~Database();

  /// Adds what players have done, all of it or nothing. `keys` are theirs, and `now` is in seconds since 1970.
  void add(const std::vector<Deeds>& deeds, const std::vector<std::string>& keys, std::int64_t now);
  /// The players with the most captures, then wins: in total, or in the last 30 days.
  std::vector<Deeds> top(std::size_t count) const;
  std::vector<Deeds> topOfTheLastDays(std::size_t count, std::int64_t now) const;
  /// Nothing but the name if the player is unknown.
  Deeds deedsOf(const std::string& key) const;

  /// The password's hash of a claimed name; empty if it isn't claimed.
  std::string claimOf(const std::string& key) const;
  /// The keys of claimed names that begin with these bytes, which are ASCII.
  std::vector<std::string> claimsBeginningWith(const std::string& bytes) const;
  enum class Claim { made, taken, full };
  Claim claim(const std::string& key, const std::string& name, const std::string& hash, std::int64_t now);

 private:
  void forget(std::int64_t day);

  struct Connection;
  std::unique_ptr<Connection> connection_;
  const int maxPlayers_;
};

}  // namespace kelvora::server
