// AGControlItems: the generation choices of the project or of one table,
// one item per control (or "@" name) that would produce output. GenCheck
// fills the lists, the host lets the user switch items off, generation
// reads them back.
#pragma once

#include <optional>
#include <string>

#include "core/super_collection.h"

namespace bw {

class AGControlItem : public Dispatch {
 public:
  std::string ItemId;
  std::string ItemFn;
  bool ItemGen = false;
  bool ItemHasHeaderFooter = true;
  bool ItemSkipHeaderFooter = false;
  std::string ItemRemark;
  std::string ItemDest;

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGControlItem"; }
};

// Keyed by ItemId, without regard to case, in the order added.
class AGControlItems : public Dispatch {
 public:
  AGControlItems();

  // False for an empty id or one already present.
  bool Add(const std::string& itemId, const std::string& itemFn, bool itemGen,
           std::optional<std::string> itemRemark);
  std::int32_t Count() const { return items_->count(); }
  bool Delete(const Variant& index);
  bool ItemExist(const Variant& index) const { return items_->find(index.toText()) != nullptr; }
  // By key or position; none when there is no such item.
  Ref<AGControlItem> Item(const Variant& index) const;

  Ref<EnumVariant> newEnum() override { return items_->newEnum(); }
  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGControlItems"; }

 private:
  Ref<CSuperCollection> items_;
};

}  // namespace bw
