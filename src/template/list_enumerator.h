// An enumerator over values taken when the walk starts.
//
// The dictionary and the folder collections hand one out from newEnum(): a
// script that removes keys or files while it walks sees each value that was
// there at the start exactly once, and nothing dangles. Clones share the
// list and keep their own place.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "core/dispatch.h"

namespace bw {

class ListEnumerator : public EnumVariant {
 public:
  explicit ListEnumerator(std::vector<Variant> items)
      : items_(std::make_shared<const std::vector<Variant>>(std::move(items))) {}

  bool next(Variant& item) override {
    if (next_ >= items_->size()) return false;
    item = (*items_)[next_++];
    return true;
  }
  void reset() override { next_ = 0; }
  Ref<EnumVariant> clone() override { return make<ListEnumerator>(*this); }

 private:
  std::shared_ptr<const std::vector<Variant>> items_;
  std::size_t next_ = 0;
};

}  // namespace bw
