// Owning handles of SQLite objects, and the prepared statement that the
// catalog reads go through.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace bw::schema {

// The source of every error the SQLite backend reports.
inline constexpr std::string_view kSqliteErrorSource = "SQLite";

// Closing with sqlite3_close_v2 lets recordsets outlive their connection:
// the database stays usable until the last statement is finalized.
struct DatabaseCloser {
  void operator()(sqlite3* db) const { sqlite3_close_v2(db); }
};
using DatabaseHandle = std::unique_ptr<sqlite3, DatabaseCloser>;

struct StatementFinalizer {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using StatementHandle = std::unique_ptr<sqlite3_stmt, StatementFinalizer>;

// Throws SQLite's message for the last failed call on `db`.
[[noreturn]] void ThrowSqliteError(sqlite3* db);

// Prepares the first statement of `sql`; `rest` (when given) receives the
// text after it. A text of blanks and comments gives no statement.
StatementHandle Prepare(sqlite3* db, std::string_view sql, std::string_view* rest = nullptr);

// A catalog query: text parameters in, rows of text and numbers out.
class Statement {
 public:
  Statement(sqlite3* db, std::string_view sql);

  // Binds the 1-based parameter `index`.
  Statement& bind(int index, std::string_view text);

  // Moves to the next row; false when there is none. Throws on failure.
  bool step();

  std::string text(int column) const;  // "" for NULL
  std::optional<std::string> optionalText(int column) const;
  std::int64_t integer(int column) const;

 private:
  sqlite3* db_;
  StatementHandle statement_;
};

// Names compare as SQLite compares them: ignoring the case of ASCII letters.
bool SameSqliteName(std::string_view a, std::string_view b);
// The order of names under SQLite's NOCASE collation; bytes break ties.
bool SqliteNameLess(std::string_view a, std::string_view b);

}  // namespace bw::schema
