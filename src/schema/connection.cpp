#include "schema/connection.h"

#include "platform/text.h"
#include "schema/client_errors.h"
#include "schema/sqlite_connection.h"

namespace bw::schema {
namespace {

std::string FirstDescription(const std::vector<ClientError>& errors) {
  return errors.empty() ? "Unknown connection error" : errors.front().description;
}

}  // namespace

ConnectionError::ConnectionError(std::vector<ClientError> errors)
    : std::runtime_error(FirstDescription(errors)), errors_(std::move(errors)) {}

Variant Recordset::value(std::string_view columnName) const {
  const std::size_t column = columnIndex(columnName);
  if (column == npos) {
    ThrowConnectionError("The recordset has no column named \"" + std::string(columnName) + "\"",
                         kEngineErrorSource, kColumnNotFoundError);
  }
  return value(column);
}

std::size_t Recordset::columnIndex(std::string_view name) const {
  const std::vector<ColumnInfo>& all = columns();
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (text::iequals(all[i].name, name)) return i;
  }
  return npos;
}

std::unique_ptr<Connection> CreateConnection(std::string_view dbType) {
  if (text::ifindAscii(dbType, "SQLITE") != std::string_view::npos) {
    return std::make_unique<SqliteConnection>();
  }
  ThrowConnectionError("No database client for type \"" + std::string(dbType) + "\" in this build",
                       kEngineErrorSource);
}

std::string ConnectionStringValue(std::string_view connStr, std::string_view key) {
  const std::string_view wanted = text::trimBlanks(key);
  for (const std::string& pair : text::split(connStr, ";")) {
    const std::size_t equals = pair.find('=');
    if (equals == std::string::npos) continue;
    const std::string_view view(pair);
    if (text::iequals(text::trimBlanks(view.substr(0, equals)), wanted)) {
      return std::string(text::trimBlanks(view.substr(equals + 1)));
    }
  }
  return "";
}

}  // namespace bw::schema
