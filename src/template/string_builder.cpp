#include "template/string_builder.h"

#include <string>

namespace bw {

AGPStringBuilder::AGPStringBuilder() {
  Clear();
}

// One chunk and one slot more: the array is numbered 0 to kChunkSize.
void AGPStringBuilder::Clear() {
  slots_.assign(kChunkSize + 1, Variant());
  position_ = 0;
}

void AGPStringBuilder::Append(const Variant& strValue) {
  if (position_ >= slots_.size()) slots_.resize(slots_.size() + kChunkSize);
  // A string is shared, not copied; other values are stored as their text.
  slots_[position_++] = strValue.isString() ? strValue : Variant(strValue.toText());
}

Variant AGPStringBuilder::ToString() const {
  std::size_t length = 0;
  for (std::size_t i = 0; i < position_; ++i) length += slots_[i].string().size();
  std::string joined;
  joined.reserve(length);
  for (std::size_t i = 0; i < position_; ++i) joined += slots_[i].string();
  return Variant(joined);
}

const MemberTable& AGPStringBuilder::members() const {
  static const MemberTable table{
      method<&AGPStringBuilder::Clear>("Clear"),
      method<&AGPStringBuilder::Append>("Append"),
      method<&AGPStringBuilder::ToString>("ToString"),
  };
  return table;
}

}  // namespace bw
