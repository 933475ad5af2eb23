#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <string>

#include "server/records/database.h"

namespace kelvora::server {

/// A prepared statement. Texts are stored as blobs, because they aren't UTF-8.
class Statement {
 public:
  Statement(sqlite3* database, const char* text) : database_(database) {
    if (sqlite3_prepare_v2(database, text, -1, &statement_, nullptr) != SQLITE_OK) fail();
  }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;
  ~Statement() { sqlite3_finalize(statement_); }

  Statement& with(std::int64_t value) {
    if (sqlite3_bind_int64(statement_, ++bound_, value) != SQLITE_OK) fail();
    return *this;
  }
  /// The text must outlive the steps.
  Statement& with(const std::string& bytes) {
    if (sqlite3_bind_blob64(statement_, ++bound_, bytes.data(), bytes.size(), SQLITE_STATIC) != SQLITE_OK) fail();
    return *this;
  }
  /// True if there is a row.
  bool step() {
    const int result = sqlite3_step(statement_);
    if (result != SQLITE_ROW && result != SQLITE_DONE) fail();
    return result == SQLITE_ROW;
  }
  std::int64_t number(int column) const { return sqlite3_column_int64(statement_, column); }
  std::string text(int column) const {
    const void* bytes = sqlite3_column_blob(statement_, column);
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_, column));
    return bytes == nullptr ? std::string() : std::string(static_cast<const char*>(bytes), size);
  }

 private:
  [[noreturn]] void fail() const { throw DatabaseError(sqlite3_errmsg(database_)); }

  sqlite3* database_;
  sqlite3_stmt* statement_ = nullptr;
  int bound_ = 0;
};

/// Runs statements without parameters and rows.
inline void run(sqlite3* database, const char* text) {
  if (sqlite3_exec(database, text, nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw DatabaseError(sqlite3_errmsg(database));
  }
}

/// Takes effect as a whole at `commit`, or not at all.
class Transaction {
 public:
  explicit Transaction(sqlite3* database) : database_(database) { run(database, "BEGIN IMMEDIATE"); }
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  ~Transaction() {
    if (!isDone_) sqlite3_exec(database_, "ROLLBACK", nullptr, nullptr, nullptr);
  }
  void commit() {
    run(database_, "COMMIT");
    isDone_ = true;
  }

 private:
  sqlite3* database_;
  bool isDone_ = false;
};

}  // namespace kelvora::server
