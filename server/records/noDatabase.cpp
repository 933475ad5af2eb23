#include "server/records/database.h"

namespace kelvora::server {

struct Database::Connection {};

bool Database::isSupported() { return false; }

Database::Database(const std::string&, int maxPlayers) : maxPlayers_(maxPlayers) {
  throw DatabaseError("this system's server has no SQLite");
}
Database::~Database() = default;

void Database::add(const std::vector<Deeds>&, const std::vector<std::string>&, std::int64_t) {}
std::vector<Deeds> Database::top(std::size_t) const { return {}; }
std::vector<Deeds> Database::topOfTheLastDays(std::size_t, std::int64_t) const { return {}; }
Deeds Database::deedsOf(const std::string&) const { return {}; }
std::string Database::claimOf(const std::string&) const { return {}; }
std::vector<std::string> Database::claimsBeginningWith(const std::string&) const { return {}; }
Database::Claim Database::claim(const std::string&, const std::string&, const std::string&, std::int64_t) {
  return Claim::full;
}

}  // namespace kelvora::server
