#include "core/attribute_rows.h"

namespace bw {

AttributeDef AttributeDefOf(const AttributeRow& row) {
  AttributeDef def;
  def.name = row.name;
  def.dataType = row.dataType;
  def.regSave = row.store != Store::None;
  def.regFormat = row.store == Store::Text ? 1 : row.store == Store::Number ? 4 : 0;
  def.fileSave = row.file;
  def.sync = row.sync;
  return def;
}

Ref<const PropertyLayout> LayoutOf(std::span<const AttributeRow> rows) {
  std::vector<AttributeDef> defs;
  defs.reserve(rows.size());
  for (const AttributeRow& row : rows) defs.push_back(AttributeDefOf(row));
  return PropertyLayout::create(std::move(defs));
}

}  // namespace bw
