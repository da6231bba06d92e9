// AGPMasterDetails, AGPMasterDetail: the project's master/detail definitions.
//
// A definition ties a detail table to a master table through pairs of
// fields (relations) and carries the three referential flags of the
// generated application. The list keeps the definitions in a keyed
// collection, key "<master>__<detail>" without regard to case, and numbers
// them with Seq, 1 to Count, which is the order in the project file:
//
//   Add Orders/Lines, Customers/Orders, Orders/Notes   Seq 1 2 3
//   Delete Customers/Orders                            Seq 1 2
//
// Names are compared exactly by MasterDetailExist, Add and Delete, while the
// collection's keys ignore case; Add of a pair that differs from an existing
// one only in case therefore meets a key in use and raises error 457.
//
// Every write that changes a value the project file holds (Seq, the table
// names, the current relation's fields, the flags) sets AGPVars().Dirty, so
// Add, Delete and CheckSequence make the project dirty through those writes.
// AddRelation and DeleteRelation leave the flag alone.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/dispatch.h"
#include "core/super_collection.h"

namespace bw {

class AGPMasterDetail : public Dispatch {
 public:
  std::int16_t Seq() const { return seq_; }
  void setSeq(std::int16_t seq);
  const std::string& MasterTable() const { return masterTable_; }
  void setMasterTable(const std::string& name);
  const std::string& DetailTable() const { return detailTable_; }
  void setDetailTable(const std::string& name);

  bool EnforceReferentialIntegrity() const { return enforceReferentialIntegrity_; }
  void setEnforceReferentialIntegrity(bool on);
  bool CascadeUpdate() const { return cascadeUpdate_; }
  void setCascadeUpdate(bool on);
  bool CascadeDelete() const { return cascadeDelete_; }
  void setCascadeDelete(bool on);

  // Relations, numbered from 1 in the order they were added.
  std::int16_t FieldCount() const { return static_cast<std::int16_t>(relations_.size()); }
  // "" outside 1 to FieldCount.
  std::string MasterField(std::int16_t i) const;
  std::string DetailField(std::int16_t i) const;
  // True when the pair was appended (and became current); Empty when a name
  // is "" or the same pair is there already.
  Variant AddRelation(const std::string& masterField, const std::string& detailField);
  // True when the first equal pair was removed; Empty otherwise. A cursor
  // left beyond the end moves to the new last relation (0 when none is left).
  Variant DeleteRelation(const std::string& masterField, const std::string& detailField);

  // The cursor into the relations; writes outside 1 to FieldCount are
  // ignored, and so are writes of the current fields while it is outside.
  std::int16_t CurrentField() const { return currentField_; }
  void setCurrentField(std::int16_t i);
  std::string CurrentMasterField() const { return MasterField(currentField_); }
  void setCurrentMasterField(const std::string& name);
  std::string CurrentDetailField() const { return DetailField(currentField_); }
  void setCurrentDetailField(const std::string& name);

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPMasterDetail"; }

 private:
  struct Relation {
    std::string masterField;
    std::string detailField;
    bool operator==(const Relation&) const = default;
  };

  Relation* currentRelation();

  std::int16_t seq_ = 0;
  std::string masterTable_;
  std::string detailTable_;
  bool enforceReferentialIntegrity_ = false;
  bool cascadeUpdate_ = false;
  bool cascadeDelete_ = false;
  std::vector<Relation> relations_;
  std::int16_t currentField_ = 0;
};

class AGPMasterDetails : public Dispatch {
 public:
  AGPMasterDetails();

  // Cursors on the definition of the last Add or successful Item.
  std::string curMasterTable;
  std::string curDetailTable;
  std::int16_t curSeq = 0;

  std::int32_t Count() const { return items_->count(); }
  // Appends a definition with the next Seq and moves the cursors to it.
  // False for a "" name, and for a pair that exists (the cursors' names
  // then move to it, curSeq stays).
  bool Add(const std::string& masterTable, const std::string& detailTable);
  // Removes a definition and closes the gap in the numbering; false for a
  // "" name or a pair that does not exist.
  bool Delete(const std::string& masterTable, const std::string& detailTable);
  // Renumbers so that Seq runs 1 to Count: of items that share a number the
  // first in collection order keeps it, and every item without a valid
  // number takes the lowest free one, in collection order.
  void CheckSequence();
  // True when a definition has exactly these two names.
  bool MasterDetailExist(const std::string& masterTable, const std::string& detailTable) const;
  // The definition under the pair's key, or none; a hit moves the cursors.
  Ref<AGPMasterDetail> Item(const std::string& masterTable, const std::string& detailTable);
  // The definition numbered `index`, or none; the cursors stay.
  Ref<AGPMasterDetail> Seq(std::int16_t index) const;

  // Deletes, in collection order, every definition that `keep` refuses;
  // gives the number deleted. For the repair after the tables change.
  std::int32_t deleteUnless(const std::function<bool(const AGPMasterDetail&)>& keep);

  // C++ access in collection order.
  std::vector<AGPMasterDetail*> items() const;

  Ref<EnumVariant> newEnum() override { return items_->newEnum(); }
  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPMasterDetails"; }

 private:
  static std::string keyOf(const std::string& masterTable, const std::string& detailTable);
  AGPMasterDetail* find(const std::string& masterTable, const std::string& detailTable) const;
  void setCursors(const AGPMasterDetail& item);

  Ref<CSuperCollection> items_;
};

// The project's one list of master/detail definitions, created on first use.
AGPMasterDetails& MasterDetails();

}  // namespace bw
