#include "schema/sqlite_statement.h"

#include <algorithm>
#include <limits>

#include "schema/client_errors.h"

namespace bw::schema {
namespace {

unsigned char LowerAscii(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 'A' && byte <= 'Z' ? static_cast<unsigned char>(byte + ('a' - 'A')) : byte;
}

int CompareIgnoringAsciiCase(std::string_view a, std::string_view b) {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    const unsigned char x = LowerAscii(a[i]), y = LowerAscii(b[i]);
    if (x != y) return x < y ? -1 : 1;
  }
  return a.size() < b.size() ? -1 : (a.size() > b.size() ? 1 : 0);
}

}  // namespace

void ThrowSqliteError(sqlite3* db) {
  ThrowConnectionError(sqlite3_errmsg(db), kSqliteErrorSource);
}

StatementHandle Prepare(sqlite3* db, std::string_view sql, std::string_view* rest) {
  if (sql.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
    ThrowConnectionError("The SQL statement is too long", kSqliteErrorSource);
  }
  sqlite3_stmt* statement = nullptr;
  const char* tail = nullptr;
  if (sqlite3_prepare_v2(db, sql.data(), static_cast<int>(sql.size()), &statement, &tail) !=
      SQLITE_OK) {
    ThrowSqliteError(db);
  }
  if (rest != nullptr) *rest = sql.substr(static_cast<std::size_t>(tail - sql.data()));
  return StatementHandle(statement);
}

Statement::Statement(sqlite3* db, std::string_view sql) : db_(db), statement_(Prepare(db, sql)) {}

Statement& Statement::bind(int index, std::string_view text) {
  if (sqlite3_bind_text(statement_.get(), index, text.data(), static_cast<int>(text.size()),
                        SQLITE_TRANSIENT) != SQLITE_OK) {
    ThrowSqliteError(db_);
  }
  return *this;
}

bool Statement::step() {
  const int result = sqlite3_step(statement_.get());
  if (result == SQLITE_ROW) return true;
  if (result == SQLITE_DONE) return false;
  ThrowSqliteError(db_);
}

std::string Statement::text(int column) const {
  return optionalText(column).value_or("");
}

std::optional<std::string> Statement::optionalText(int column) const {
  const unsigned char* text = sqlite3_column_text(statement_.get(), column);
  if (text == nullptr) return std::nullopt;
  return std::string(reinterpret_cast<const char*>(text),
                     static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column)));
}

std::int64_t Statement::integer(int column) const {
  return sqlite3_column_int64(statement_.get(), column);
}

bool SameSqliteName(std::string_view a, std::string_view b) {
  return a.size() == b.size() && CompareIgnoringAsciiCase(a, b) == 0;
}

bool SqliteNameLess(std::string_view a, std::string_view b) {
  const int order = CompareIgnoringAsciiCase(a, b);
  return order != 0 ? order < 0 : a < b;
}

}  // namespace bw::schema
