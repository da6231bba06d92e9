#include "core/control_items.h"

namespace bw {

const MemberTable& AGControlItem::members() const {
  using I = AGControlItem;
  static const MemberTable table{
      field<&I::ItemId>("ItemId"),
      field<&I::ItemFn>("ItemFn"),
      field<&I::ItemGen>("ItemGen"),
      field<&I::ItemHasHeaderFooter>("ItemHasHeaderFooter"),
      field<&I::ItemSkipHeaderFooter>("ItemSkipHeaderFooter"),
      field<&I::ItemRemark>("ItemRemark"),
      field<&I::ItemDest>("ItemDest"),
  };
  return table;
}

AGControlItems::AGControlItems() : items_(make<CSuperCollection>()) { items_->setCompareMode(1); }

bool AGControlItems::Add(const std::string& itemId, const std::string& itemFn, bool itemGen,
                         std::optional<std::string> itemRemark) {
  if (itemId.empty() || ItemExist(Variant(itemId))) return false;
  auto item = make<AGControlItem>();
  item->ItemId = itemId;
  item->ItemFn = itemFn;
  item->ItemGen = itemGen;
  item->ItemRemark = itemRemark.value_or("");
  items_->add(Variant(item), itemId);
  return true;
}

bool AGControlItems::Delete(const Variant& index) {
  if (!Item(index)) return false;
  items_->remove(index.isNumeric() ? index : Variant(index.toText()));
  return true;
}

Ref<AGControlItem> AGControlItems::Item(const Variant& index) const {
  const Variant* found = nullptr;
  if (index.isNumeric()) {
    const std::int32_t position = index.toLong().value_or(0);
    if (position >= 1 && position <= Count()) found = &items_->itemAt(position);
  } else {
    found = items_->find(index.toText());
  }
  return found ? Ref<AGControlItem>(static_cast<AGControlItem*>(found->object())) : nullptr;
}

const MemberTable& AGControlItems::members() const {
  using C = AGControlItems;
  static const MemberTable table{
      method<&C::Add>("Add"),
      method<&C::Count>("Count"),
      method<&C::Delete>("Delete"),
      method<&C::ItemExist>("ItemExist"),
      asDefault(property<&C::Item>("Item")),
  };
  return table;
}

}  // namespace bw
