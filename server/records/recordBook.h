#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/millis.h"
#include "server/arena/nameVerdict.h"
#include "server/arena/score.h"
#include "server/records/database.h"
#include "server/system/serverHost.h"

namespace kelvora::server {

/// The records of an arena, in a database that is used on another thread. If that fails, the records are lost and the
/// game goes on: the error is logged, and the next use opens the file again.
class RecordBook {
 public:
  static constexpr std::size_t tableLength = 10;

  /// An empty path keeps no records. Throws std::runtime_error if the file's folder is missing.
  RecordBook(ServerHost& host, std::string path);
  RecordBook(const RecordBook&) = delete;
  RecordBook& operator=(const RecordBook&) = delete;

  /// Opens the file, for the tables. Logs it if that fails.
  void open();
  bool isKept() const { return !path_.empty(); }

  /// Adds what people have done since the last call.
  void add(const std::vector<Score>& scores, bool isRoundOver, Millis now);
  /// Forgets a client that has gone.
  void left(ClientId client);

  struct Tables {
    std::vector<Deeds> always;
    std::vector<Deeds> lately;  ///< in the last 30 days
  };
  /// As of this arena's last round's end or player's departure.
  const Tables& tables() const { return tables_; }
  /// Passes a player's deeds on, later, or nothing if they can't be read. The name is empty if the player is unknown.
  /// False if the server is busy.
  bool find(const std::string& name, std::function<void(const std::optional<Deeds>& deeds)> finish);

  /// Whether this client may play under the name. Asks the database first, so the first answer is always pending.
  NameVerdict verdict(ClientId client, const std::string& name, const std::string& password);
  bool hasAsked(ClientId client) const { return verdicts_.contains(client); }
  /// Claims a name. Passes on the text for the player, later. False if the server is busy.
  bool claim(const std::string& name, const std::string& password, std::function<void(const std::string& text)> finish);

 private:
  struct File;
  /// Runs `work` with the database on the other thread, then `finish` here, with the error or an empty text. False if
  /// the server is busy.
  bool use(std::function<void(Database&)> work, std::function<void(const std::string& error)> finish);
  /// Logs an error, or its end, but neither twice. A file that can be read may still be on a full disk.
  void report(const std::string& error);

  ServerHost& host_;
  const std::string path_;
  const std::shared_ptr<File> file_;
  std::string reported_;  // the last error
  Tables tables_;
  std::map<ClientId, Millis> countedUntil_;
  std::map<ClientId, NameVerdict> verdicts_;
};

}  // namespace kelvora::server
