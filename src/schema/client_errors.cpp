#include "schema/client_errors.h"

#include <utility>
#include <vector>

namespace bw::schema {

void ThrowConnectionError(std::string description, std::string_view source, std::int32_t number) {
  throw ConnectionError(
      std::vector<ClientError>{{number, std::move(description), std::string(source)}});
}

void RequireCurrentRow(const Recordset& rows) {
  if (rows.eof()) {
    ThrowConnectionError("The recordset has no current row: it is past its last row",
                         kEngineErrorSource, kNoCurrentRowError);
  }
}

void RequireCurrentValue(const Recordset& rows, std::size_t column) {
  RequireCurrentRow(rows);
  const std::size_t count = rows.columns().size();
  if (column >= count) {
    ThrowConnectionError("Column " + std::to_string(column) + " is not among the " +
                             std::to_string(count) + " columns of the recordset",
                         kEngineErrorSource, kColumnNotFoundError);
  }
}

}  // namespace bw::schema
