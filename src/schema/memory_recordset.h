// MemoryRecordset: a Recordset over rows already read, for results that a
// backend assembles itself (the schema rowsets) rather than streams.
#pragma once

#include <cstddef>
#include <vector>

#include "schema/connection.h"

namespace bw::schema {

class MemoryRecordset final : public Recordset {
 public:
  using Row = std::vector<Variant>;

  // Every row holds one value per column, in column order.
  MemoryRecordset(std::vector<ColumnInfo> columns, std::vector<Row> rows);

  const std::vector<ColumnInfo>& columns() const override { return columns_; }
  bool eof() const override { return current_ >= rows_.size(); }
  void moveFirst() override { current_ = 0; }
  void moveNext() override;
  using Recordset::value;  // by name, too
  Variant value(std::size_t column) const override;

 private:
  std::vector<ColumnInfo> columns_;
  std::vector<Row> rows_;
  std::size_t current_ = 0;
};

}  // namespace bw::schema
