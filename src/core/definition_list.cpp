#include "core/definition_list.h"

#include <algorithm>

#include "core/names.h"
#include "platform/text.h"

namespace bw {

DefinitionList::DefinitionList(ListAttributes names)
    : names_(names), items_(make<CSuperCollection>()) {
  items_->setCompareMode(1);
}

DefinitionObject* DefinitionList::find(std::string_view key) const {
  const Variant* item = items_->find(key);
  return item ? static_cast<DefinitionObject*>(item->object()) : nullptr;
}

DefinitionObject& DefinitionList::at(std::int32_t offset) const {
  return static_cast<DefinitionObject&>(*items_->itemAt(offset + items_->baseIndex()).object());
}

std::int16_t DefinitionList::seqOf(DefinitionObject& item) const { return item.attrInteger(names_.seq); }
std::string DefinitionList::nameOf(DefinitionObject& item) const { return item.attrText(names_.name); }

std::vector<DefinitionObject*> DefinitionList::bySequence() const {
  std::vector<DefinitionObject*> items;
  items.reserve(static_cast<std::size_t>(Count()));
  for (std::int32_t offset = 0; offset < Count(); ++offset) items.push_back(&at(offset));
  std::stable_sort(items.begin(), items.end(),
                   [this](DefinitionObject* a, DefinitionObject* b) { return seqOf(*a) < seqOf(*b); });
  return items;
}

void DefinitionList::setCursors(DefinitionObject& item) {
  curName = nameOf(item);
  curSeq = seqOf(item);
}

// ---------------------------------------------------------------------------
// Lookups

Ref<DefinitionObject> DefinitionList::Item(const Variant& index) {
  DefinitionObject* item = nullptr;
  if (index.isString()) {
    item = find(index.string());
  } else if (index.isNumeric()) {
    const std::int32_t offset = index.toLong().value_or(0) - items_->baseIndex();
    if (offset >= 0 && offset < Count()) item = &at(offset);
  }
  if (!item) return {};
  setCursors(*item);
  return refTo(item);
}

Ref<DefinitionObject> DefinitionList::Seq(std::int16_t index) const {
  for (std::int32_t offset = 0; offset < Count(); ++offset)
    if (seqOf(at(offset)) == index) return refTo(&at(offset));
  return {};
}

void DefinitionList::SetItem(const Variant& index) {
  if (DefinitionObject* item = find(index.toText())) setCursors(*item);
}

void DefinitionList::SetSeq(std::int16_t index) {
  if (Ref<DefinitionObject> item = Seq(index)) setCursors(*item);
}

// ---------------------------------------------------------------------------
// Add, rename, delete

std::optional<std::string> DefinitionList::differentlyCasedName(const std::string& name) const {
  for (std::int32_t offset = 0; offset < Count(); ++offset) {
    std::string itemName = nameOf(at(offset));
    if (text::iequals(itemName, name)) return itemName;
  }
  return std::nullopt;
}

DefinitionObject& DefinitionList::appendNew(const std::string& name, bool loading) {
  Ref<DefinitionObject> item = createItem();
  AGProperties& bag = item->bag();
  const auto seq = Variant(static_cast<std::int16_t>(Count() + 1));
  if (loading) {
    bag.assignAt(bag.ensure(names_.name), Variant(name));
    bag.assignAt(bag.ensure(names_.seq), seq);
  } else {
    item->setAttr(names_.name, Variant(name));
  }
  items_->add(Variant(item), name);
  if (!loading) item->setAttr(names_.seq, seq);
  setCursors(*item);
  return *item;
}

DefinitionList::Rename DefinitionList::rekey(const std::string& oldName, const std::string& newName) {
  if (oldName.empty() || newName.empty()) return Rename::Refused;
  if (oldName == newName) return Rename::SameName;
  DefinitionObject* item = find(oldName);
  if (!item) return Rename::Refused;
  if (!text::iequals(oldName, newName) && find(newName)) return Rename::Refused;
  // The collection hands the new key to the item's Key, that is its name.
  items_->changeKey(oldName, newName);
  item->setAttr(names_.var, Variant(MakeVarName(newName, names_.varPrefix)));
  setCursors(*item);
  return Rename::Renamed;
}

DefinitionObject* DefinitionList::itemToDelete(const std::string& key) const {
  return key.empty() ? nullptr : find(key);
}

void DefinitionList::closeSequenceGap(DefinitionObject& leaving) {
  const std::int16_t gap = seqOf(leaving);
  for (std::int32_t offset = 0; offset < Count(); ++offset) {
    DefinitionObject& item = at(offset);
    const std::int16_t seq = seqOf(item);
    if (seq >= gap) item.setAttr(names_.seq, Variant(static_cast<std::int16_t>(seq - 1)));
  }
}

void DefinitionList::rebuildVariableNames() {
  for (std::int32_t offset = 0; offset < Count(); ++offset) {
    DefinitionObject& item = at(offset);
    item.setAttr(names_.var, Variant(MakeVarName(nameOf(item), names_.varPrefix)));
  }
}

const MemberTable& DefinitionList::listMembers() {
  using L = DefinitionList;
  static const MemberTable table{
      field<&L::curName>("curName"),
      field<&L::curSeq>("curSeq"),
      method<&L::Count>("Count"),
      asDefault(property<&L::Item>("Item")),
      method<&L::Seq>("Seq"),
      method<&L::SetItem>("SetItem"),
      method<&L::SetSeq>("SetSeq"),
  };
  return table;
}

}  // namespace bw
