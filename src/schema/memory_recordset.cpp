#include "schema/memory_recordset.h"

#include <cassert>
#include <utility>

#include "schema/client_errors.h"

namespace bw::schema {

MemoryRecordset::MemoryRecordset(std::vector<ColumnInfo> columns, std::vector<Row> rows)
    : columns_(std::move(columns)), rows_(std::move(rows)) {
  for ([[maybe_unused]] const Row& row : rows_) {
    assert(row.size() == columns_.size() && "a row must hold one value per column");
  }
}

void MemoryRecordset::moveNext() {
  RequireCurrentRow(*this);
  ++current_;
}

Variant MemoryRecordset::value(std::size_t column) const {
  RequireCurrentValue(*this, column);
  return rows_[current_][column];
}

}  // namespace bw::schema
