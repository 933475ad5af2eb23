#include "server/records/database.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include "server/records/statement.h"

namespace kelvora::server {

namespace {

constexpr int busyTimeout = 5'000;  // ms to wait for another server's transaction
constexpr std::int64_t secondsPerDay = 86'400;

constexpr const char* schema =
    "PRAGMA journal_mode = WAL;"
    "PRAGMA synchronous = FULL;"
    "PRAGMA journal_size_limit = 1048576;"
    "CREATE TABLE IF NOT EXISTS players (key BLOB PRIMARY KEY, name BLOB NOT NULL, rounds INTEGER NOT NULL DEFAULT 0,"
    " captures INTEGER NOT NULL DEFAULT 0, wins INTEGER NOT NULL DEFAULT 0, seconds INTEGER NOT NULL DEFAULT 0,"
    " seen INTEGER NOT NULL, hash TEXT NOT NULL DEFAULT '') WITHOUT ROWID;"
    "CREATE TABLE IF NOT EXISTS days (day INTEGER NOT NULL, key BLOB NOT NULL, rounds INTEGER NOT NULL,"
    " captures INTEGER NOT NULL, wins INTEGER NOT NULL, seconds INTEGER NOT NULL, PRIMARY KEY (day, key)) WITHOUT "
    "ROWID;"
    "CREATE INDEX IF NOT EXISTS best ON players (captures DESC, wins DESC);"
    "CREATE INDEX IF NOT EXISTS oldest ON players (seen) WHERE hash = '';"
    "CREATE INDEX IF NOT EXISTS claimed ON players (key) WHERE hash <> '';";

Deeds readDeeds(const Statement& row) {
  return {row.text(0), row.number(1), row.number(2), row.number(3), row.number(4)};
}

}  // namespace

struct Database::Connection {
  sqlite3* handle = nullptr;

  ~Connection() { sqlite3_close(handle); }
};

bool Database::isSupported() { return true; }

Database::Database(const std::string& path, int maxPlayers)
    : connection_(std::make_unique<Connection>()), maxPlayers_(maxPlayers) {
  // The file has hashes of passwords, and SQLite would let everybody read a new one. The files that it puts beside this
  // one get the same permissions.
  if (const int file = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR); file >= 0) ::close(file);
  constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
  if (sqlite3_open_v2(path.c_str(), &connection_->handle, flags, nullptr) != SQLITE_OK) {
    throw DatabaseError(sqlite3_errmsg(connection_->handle));
  }
  sqlite3_busy_timeout(connection_->handle, busyTimeout);
  run(connection_->handle, schema);
}

Database::~Database() = default;

void Database::add(const std::vector<Deeds>& deeds, const std::vector<std::string>& keys, std::int64_t now) {
  sqlite3* const handle = connection_->handle;
  const std::int64_t day = now / secondsPerDay;
  Transaction transaction(connection_->handle);
  for (std::size_t i = 0; i < deeds.size(); ++i) {
    const Deeds& part = deeds[i];
    Statement(handle,
              "INSERT INTO players (key, name, rounds, captures, wins, seconds, seen) VALUES (?, ?, ?, ?, ?, ?, ?)"
              " ON CONFLICT (key) DO UPDATE SET name = excluded.name, rounds = rounds + excluded.rounds,"
              " captures = captures + excluded.captures, wins = wins + excluded.wins,"
              " seconds = seconds + excluded.seconds, seen = excluded.seen")
        .with(keys[i])
        .with(part.name)
        .with(part.rounds)
        .with(part.captures)
        .with(part.wins)
        .with(part.seconds)
        .with(now)
        .step();
    Statement(handle,
              "INSERT INTO days (day, key, rounds, captures, wins, seconds) VALUES (?, ?, ?, ?, ?, ?)"
              " ON CONFLICT (day, key) DO UPDATE SET rounds = rounds + excluded.rounds,"
              " captures = captures + excluded.captures, wins = wins + excluded.wins,"
              " seconds = seconds + excluded.seconds")
        .with(day)
        .with(keys[i])
        .with(part.rounds)
        .with(part.captures)
        .with(part.wins)
        .with(part.seconds)
        .step();
  }
  forget(day);
  transaction.commit();
}

void Database::forget(std::int64_t day) {
  sqlite3* const handle = connection_->handle;
  Statement(handle, "DELETE FROM days WHERE day <= ?").with(day - daysKept).step();
  Statement oldest(handle,
                   "SELECT key FROM players WHERE hash = '' ORDER BY seen"
                   " LIMIT max(0, (SELECT count(*) FROM players) - ?)");
  oldest.with(maxPlayers_);
  std::vector<std::string> keys;
  while (oldest.step()) keys.push_back(oldest.text(0));
  for (const std::string& key : keys) {
    Statement(handle, "DELETE FROM players WHERE key = ?").with(key).step();
    // By day, because that comes first in the table's key.
    for (std::int64_t past = 0; past < daysKept; ++past) {
      Statement(handle, "DELETE FROM days WHERE day = ? AND key = ?").with(day - past).with(key).step();
    }
  }
}

std::vector<Deeds> Database::top(std::size_t count) const {
  Statement rows(connection_->handle,
                 "SELECT name, rounds, captures, wins, seconds FROM players ORDER BY captures DESC, wins DESC, key"
                 " LIMIT ?");
  rows.with(static_cast<std::int64_t>(count));
  std::vector<Deeds> best;
  while (rows.step()) best.push_back(readDeeds(rows));
  return best;
}

std::vector<Deeds> Database::topOfTheLastDays(std::size_t count, std::int64_t now) const {
  Statement rows(connection_->handle,
                 "SELECT coalesce((SELECT name FROM players WHERE players.key = days.key), key), sum(rounds),"
                 " sum(captures) AS total, sum(wins) AS won, sum(seconds) FROM days WHERE day > ? GROUP BY key"
                 " ORDER BY total DESC, won DESC, key LIMIT ?");
  rows.with(now / secondsPerDay - daysKept).with(static_cast<std::int64_t>(count));
  std::vector<Deeds> best;
  while (rows.step()) best.push_back(readDeeds(rows));
  return best;
}

Deeds Database::deedsOf(const std::string& key) const {
  Statement row(connection_->handle, "SELECT name, rounds, captures, wins, seconds FROM players WHERE key = ?");
  return row.with(key).step() ? readDeeds(row) : Deeds{};
}

std::string Database::claimOf(const std::string& key) const {
  Statement row(connection_->handle, "SELECT hash FROM players WHERE key = ?");
  return row.with(key).step() ? row.text(0) : std::string();
}

std::vector<std::string> Database::claimsBeginningWith(const std::string& bytes) const {
  Statement rows(connection_->handle, "SELECT key FROM players WHERE hash <> '' AND key >= ? AND key < ?");
  const std::string end = bytes + '\x7F';  // above all ASCII letters
  rows.with(bytes).with(end);
  std::vector<std::string> keys;
  while (rows.step()) keys.push_back(rows.text(0));
  return keys;
}

Database::Claim Database::claim(const std::string& key, const std::string& name, const std::string& hash,
                                std::int64_t now) {
  Transaction transaction(connection_->handle);
  if (!claimOf(key).empty()) return Claim::taken;
  Statement claims(connection_->handle, "SELECT count(*) FROM players WHERE hash <> ''");
  if (claims.step() && claims.number(0) >= maxClaims) return Claim::full;
  Statement(connection_->handle,
            "INSERT INTO players (key, name, seen, hash) VALUES (?, ?, ?, ?)"
            " ON CONFLICT (key) DO UPDATE SET hash = excluded.hash")
      .with(key)
      .with(name)
      .with(now)
      .with(hash)
      .step();
  transaction.commit();
  return Claim::made;
}

}  // namespace kelvora::server
