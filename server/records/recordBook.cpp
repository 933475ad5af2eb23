#include "server/records/recordBook.h"

#include <algorithm>
#include <utility>

#include "server/arena/names.h"
#include "server/arena/plainText.h"
#include "server/system/files.h"
#include "server/system/passwords.h"

namespace kelvora::server {

/// Used on the other thread only.
struct RecordBook::File {
  std::optional<Database> database{};
};

RecordBook::RecordBook(ServerHost& host, std::string path)
    : host_(host), path_(std::move(path)), file_(std::make_shared<File>()) {
  requireFolderOf(path_);
}

void RecordBook::open() { add({}, false, 0); }

void RecordBook::add(const std::vector<Score>& scores, bool isRoundOver, Millis now) {
  if (!isKept()) return;
  std::vector<Deeds> deeds;
  std::vector<std::string> keys;
  for (const Score& score : scores) {
    const Millis since = std::exchange(countedUntil_.try_emplace(score.client, score.joined).first->second, now);
    Deeds part{.name = score.name,
               .rounds = isRoundOver ? 1 : 0,
               .captures = score.captures,
               .wins = score.isWinner ? 1 : 0,
               .seconds = (now - since) / 1'000};
    if (part.rounds + part.captures + part.seconds == 0) continue;
    deeds.push_back(std::move(part));
    keys.push_back(skeletonOf(score.name));
  }
  const auto tables = std::make_shared<Tables>();
  const std::int64_t today = host_.wallClock();
  const bool isUnderWay = use(
      [deeds = std::move(deeds), keys = std::move(keys), tables, today](Database& database) {
        if (!deeds.empty()) database.add(deeds, keys, today);
        *tables = {database.top(tableLength), database.topOfTheLastDays(tableLength, today)};
      },
      [this, tables](const std::string& error) {
        if (!error.empty()) return;
        report({});
        tables_ = std::move(*tables);
      });
  if (!isUnderWay) report("too much is to be written");
}

void RecordBook::left(ClientId client) {
  countedUntil_.erase(client);
  verdicts_.erase(client);
}

bool RecordBook::find(const std::string& name, std::function<void(const std::optional<Deeds>& deeds)> finish) {
  const auto deeds = std::make_shared<std::optional<Deeds>>();
  return use([key = skeletonOf(name), deeds](Database& database) { *deeds = database.deedsOf(key); },
             [deeds, finish = std::move(finish)](const std::string&) { finish(*deeds); });
}

NameVerdict RecordBook::verdict(ClientId client, const std::string& name, const std::string& password) {
  if (!isKept()) return {};
  const auto [known, isNew] = verdicts_.try_emplace(client, NameVerdict{.isPending = true});
  if (!isNew) return known->second;
  const auto answer = std::make_shared<NameVerdict>();  // by default, the name is nobody's
  const bool isUnderWay = use(
      [name, password, answer](Database& database) {
        const std::string key = skeletonOf(name);
        const std::string hash = database.claimOf(key);
        if (!hash.empty() && (password.empty() || !matches(password, hash))) {
          answer->outcome = Outcome::refused("That name is claimed. Log in with its password, or choose another name.");
        }
        answer->claimed = database.claimsBeginningWith(commonSkeleton(name));
        std::erase(answer->claimed, key);
      },
      [this, client, answer](const std::string&) {
        if (const auto asked = verdicts_.find(client); asked != verdicts_.end()) asked->second = std::move(*answer);
      });
  if (isUnderWay) return known->second;
  verdicts_.erase(known);
  return {.outcome = Outcome::refused(serverIsBusy)};
}

bool RecordBook::claim(const std::string& name, const std::string& password,
                       std::function<void(const std::string& text)> finish) {
  const auto result = std::make_shared<Database::Claim>();
  const std::int64_t now = host_.wallClock();
  return use(
      [key = skeletonOf(name), name, password, result, now](Database& database) {
        const std::string hash = hashOf(password);
        if (hash.empty()) throw DatabaseError("the password can't be hashed");
        *result = database.claim(key, name, hash, now);
      },
      [name, result, finish = std::move(finish)](const std::string& error) {
        if (!error.empty()) return finish("The name can't be claimed now.");
        switch (*result) {
          case Database::Claim::made:
            return finish("The name " + name + " is yours. From now on, log in with this password.");
          case Database::Claim::taken:
            return finish("Somebody has claimed the name already.");
          case Database::Claim::full:
            return finish("No more names can be claimed here.");
        }
      });
}

bool RecordBook::use(std::function<void(Database&)> work, std::function<void(const std::string& error)> finish) {
  const auto error = std::make_shared<std::string>();
  return host_.runAside(
      [file = file_, path = path_, work = std::move(work), error] {
        try {
          if (!file->database) file->database.emplace(path);
          work(*file->database);
        } catch (const DatabaseError& fault) {
          *error = fault.what();
          file->database.reset();
        }
      },
      [this, error, finish = std::move(finish)] {
        if (!error->empty()) report(*error);
        finish(*error);
      });
}

void RecordBook::report(const std::string& error) {
  if (error == reported_) return;
  reported_ = error;
  host_.log(error.empty() ? "the records work again" : "no records: " + path_ + ": " + error);
}

}  // namespace kelvora::server
