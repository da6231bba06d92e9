#include "persistence/master_details.h"

#include <algorithm>

#include "core/agp_vars.h"

namespace bw {
namespace {

// A write that changes what the project file holds makes the project dirty;
// writing the value it already has does not.
template <typename T>
void assignMarkingDirty(T& target, const T& value) {
  if (target == value) return;
  target = value;
  AGPVars().Dirty = true;
}

}  // namespace

// ---------------------------------------------------------------------------
// AGPMasterDetail

void AGPMasterDetail::setSeq(std::int16_t seq) {
  assignMarkingDirty(seq_, seq);
}
void AGPMasterDetail::setMasterTable(const std::string& name) {
  assignMarkingDirty(masterTable_, name);
}
void AGPMasterDetail::setDetailTable(const std::string& name) {
  assignMarkingDirty(detailTable_, name);
}
void AGPMasterDetail::setEnforceReferentialIntegrity(bool on) {
  assignMarkingDirty(enforceReferentialIntegrity_, on);
}
void AGPMasterDetail::setCascadeUpdate(bool on) {
  assignMarkingDirty(cascadeUpdate_, on);
}
void AGPMasterDetail::setCascadeDelete(bool on) {
  assignMarkingDirty(cascadeDelete_, on);
}

std::string AGPMasterDetail::MasterField(std::int16_t i) const {
  return i >= 1 && i <= FieldCount() ? relations_[static_cast<std::size_t>(i - 1)].masterField
                                     : std::string();
}

std::string AGPMasterDetail::DetailField(std::int16_t i) const {
  return i >= 1 && i <= FieldCount() ? relations_[static_cast<std::size_t>(i - 1)].detailField
                                     : std::string();
}

Variant AGPMasterDetail::AddRelation(const std::string& masterField,
                                     const std::string& detailField) {
  const Relation added{masterField, detailField};
  if (masterField.empty() || detailField.empty()) return {};
  if (std::find(relations_.begin(), relations_.end(), added) != relations_.end()) return {};
  relations_.push_back(added);
  currentField_ = FieldCount();
  return Variant(true);
}

Variant AGPMasterDetail::DeleteRelation(const std::string& masterField,
                                        const std::string& detailField) {
  if (masterField.empty() || detailField.empty()) return {};
  auto found = std::find(relations_.begin(), relations_.end(), Relation{masterField, detailField});
  if (found == relations_.end()) return {};
  relations_.erase(found);
  currentField_ = std::min(currentField_, FieldCount());
  return Variant(true);
}

void AGPMasterDetail::setCurrentField(std::int16_t i) {
  if (i >= 1 && i <= FieldCount()) currentField_ = i;
}

AGPMasterDetail::Relation* AGPMasterDetail::currentRelation() {
  if (currentField_ < 1 || currentField_ > FieldCount()) return nullptr;
  return &relations_[static_cast<std::size_t>(currentField_ - 1)];
}

void AGPMasterDetail::setCurrentMasterField(const std::string& name) {
  if (Relation* relation = currentRelation()) assignMarkingDirty(relation->masterField, name);
}

void AGPMasterDetail::setCurrentDetailField(const std::string& name) {
  if (Relation* relation = currentRelation()) assignMarkingDirty(relation->detailField, name);
}

const MemberTable& AGPMasterDetail::members() const {
  using M = AGPMasterDetail;
  static const MemberTable table{
      property<&M::Seq, &M::setSeq>("Seq"),
      property<&M::MasterTable, &M::setMasterTable>("MasterTable"),
      property<&M::DetailTable, &M::setDetailTable>("DetailTable"),
      property<&M::FieldCount>("FieldCount"),
      property<&M::CurrentField, &M::setCurrentField>("CurrentField"),
      property<&M::CurrentMasterField, &M::setCurrentMasterField>("CurrentMasterField"),
      property<&M::CurrentDetailField, &M::setCurrentDetailField>("CurrentDetailField"),
      property<&M::EnforceReferentialIntegrity, &M::setEnforceReferentialIntegrity>(
          "EnforceReferentialIntegrity"),
      property<&M::CascadeUpdate, &M::setCascadeUpdate>("CascadeUpdate"),
      property<&M::CascadeDelete, &M::setCascadeDelete>("CascadeDelete"),
      method<&M::AddRelation>("AddRelation"),
      method<&M::DeleteRelation>("DeleteRelation"),
      method<&M::MasterField>("MasterField"),
      method<&M::DetailField>("DetailField"),
  };
  return table;
}

// ---------------------------------------------------------------------------
// AGPMasterDetails

AGPMasterDetails::AGPMasterDetails() : items_(make<CSuperCollection>()) {
  items_->setCompareMode(1);
}

std::string AGPMasterDetails::keyOf(const std::string& masterTable,
                                    const std::string& detailTable) {
  return masterTable + "__" + detailTable;
}

std::vector<AGPMasterDetail*> AGPMasterDetails::items() const {
  std::vector<AGPMasterDetail*> all;
  all.reserve(static_cast<std::size_t>(Count()));
  for (const Variant& value : items_->values())
    all.push_back(static_cast<AGPMasterDetail*>(value.object()));
  return all;
}

// The key lookup ignores case and the key cannot tell "a__b"/"c" from
// "a"/"b__c", so a hit counts only when both names match exactly.
AGPMasterDetail* AGPMasterDetails::find(const std::string& masterTable,
                                        const std::string& detailTable) const {
  const Variant* value = items_->find(keyOf(masterTable, detailTable));
  if (!value) return nullptr;
  auto* item = static_cast<AGPMasterDetail*>(value->object());
  return item->MasterTable() == masterTable && item->DetailTable() == detailTable ? item : nullptr;
}

bool AGPMasterDetails::MasterDetailExist(const std::string& masterTable,
                                         const std::string& detailTable) const {
  return find(masterTable, detailTable) != nullptr;
}

void AGPMasterDetails::setCursors(const AGPMasterDetail& item) {
  curMasterTable = item.MasterTable();
  curDetailTable = item.DetailTable();
  curSeq = item.Seq();
}

bool AGPMasterDetails::Add(const std::string& masterTable, const std::string& detailTable) {
  if (masterTable.empty() || detailTable.empty()) return false;
  if (MasterDetailExist(masterTable, detailTable)) {
    curMasterTable = masterTable;
    curDetailTable = detailTable;
    return false;
  }
  curSeq = static_cast<std::int16_t>(Count() + 1);
  auto item = make<AGPMasterDetail>();
  item->setMasterTable(masterTable);
  item->setDetailTable(detailTable);
  item->setSeq(curSeq);
  // Raises 457 for a pair that differs from an existing one only in case.
  items_->add(Variant(item), keyOf(masterTable, detailTable));
  curMasterTable = masterTable;
  curDetailTable = detailTable;
  CheckSequence();
  return true;
}

bool AGPMasterDetails::Delete(const std::string& masterTable, const std::string& detailTable) {
  if (masterTable.empty() || detailTable.empty()) return false;
  AGPMasterDetail* leaving = find(masterTable, detailTable);
  if (!leaving) return false;
  const std::int16_t gap = leaving->Seq();
  for (AGPMasterDetail* item : items())
    if (item->Seq() >= gap) item->setSeq(static_cast<std::int16_t>(item->Seq() - 1));
  items_->remove(Variant(keyOf(masterTable, detailTable)));
  CheckSequence();
  return true;
}

void AGPMasterDetails::CheckSequence() {
  const std::vector<AGPMasterDetail*> all = items();
  const auto n = static_cast<std::int16_t>(all.size());
  std::vector<bool> taken(all.size() + 1, false);  // slot 0 unused
  auto valid = [n](std::int16_t seq) { return seq >= 1 && seq <= n; };

  for (AGPMasterDetail* item : all) {
    if (!valid(item->Seq())) continue;
    if (taken[static_cast<std::size_t>(item->Seq())])
      item->setSeq(0);
    else
      taken[static_cast<std::size_t>(item->Seq())] = true;
  }
  for (AGPMasterDetail* item : all) {
    if (valid(item->Seq())) continue;
    // As many slots are free as items are left without a number.
    const auto lowestFree = std::find(taken.begin() + 1, taken.end(), false);
    item->setSeq(static_cast<std::int16_t>(lowestFree - taken.begin()));
    *lowestFree = true;
  }
}

Ref<AGPMasterDetail> AGPMasterDetails::Item(const std::string& masterTable,
                                            const std::string& detailTable) {
  const Variant* value = items_->find(keyOf(masterTable, detailTable));
  if (!value) return {};
  Ref<AGPMasterDetail> item(static_cast<AGPMasterDetail*>(value->object()));
  setCursors(*item);
  return item;
}

Ref<AGPMasterDetail> AGPMasterDetails::Seq(std::int16_t index) const {
  for (AGPMasterDetail* item : items())
    if (item->Seq() == index) return refTo(item);
  return {};
}

std::int32_t AGPMasterDetails::deleteUnless(
    const std::function<bool(const AGPMasterDetail&)>& keep) {
  std::int32_t deleted = 0;
  // items() is a snapshot, so deleting does not disturb the walk; the
  // reference keeps the names alive while Delete releases the item.
  for (AGPMasterDetail* item : items()) {
    if (keep(*item)) continue;
    const Ref<AGPMasterDetail> leaving = refTo(item);
    Delete(leaving->MasterTable(), leaving->DetailTable());
    ++deleted;
  }
  return deleted;
}

const MemberTable& AGPMasterDetails::members() const {
  using M = AGPMasterDetails;
  static const MemberTable table{
      field<&M::curMasterTable>("curMasterTable"),
      field<&M::curDetailTable>("curDetailTable"),
      field<&M::curSeq>("curSeq"),
      method<&M::Add>("Add"),
      method<&M::Count>("Count"),
      method<&M::CheckSequence>("CheckSequence"),
      method<&M::Delete>("Delete"),
      method<&M::MasterDetailExist>("MasterDetailExist"),
      asDefault(property<&M::Item>("Item")),
      method<&M::Seq>("Seq"),
      method<&M::newEnum>("NewEnum_md"),
  };
  return table;
}

AGPMasterDetails& MasterDetails() {
  Ref<Dispatch>& slot = AGPVars().MasterDetails;
  if (!slot) slot = make<AGPMasterDetails>();
  return static_cast<AGPMasterDetails&>(*slot);
}

}  // namespace bw
