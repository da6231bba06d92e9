// DefinitionList: what AGPTables and AGPFields share.
//
// A list keeps its items in a keyed collection (keys without regard to
// case, positions from 1) and two cursors, curName and curSeq, on the item
// last added, renamed or fetched. Templates read the cursors after SetItem
// and SetSeq, so a lookup has the cursor as its effect.
//
// Besides its position in the collection (insertion order), each item has a
// sequence number attribute (TblSeq, FldSeq): its place in display and
// generation order. Add gives the new item Count, Delete closes the gap, so
// the numbers stay 1..Count:
//
//   Add a, b, c      positions 1 2 3   seq a1 b2 c3
//   seq of c := 1, a := 3 (host reorders)   Item(1) is a, Seq(1) is c
//   Delete b          positions 1 2     seq a2 c1
//
// The subclasses add what differs: the type of item, and the stores that a
// rename or delete is carried into.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/definition_object.h"
#include "core/super_collection.h"

namespace bw {

// The attributes that tie a list to its items.
struct ListAttributes {
  std::string_view name;       // TblName, FldName: the key
  std::string_view seq;        // TblSeq, FldSeq
  std::string_view var;        // TblVar, FldVar: the name in generated code
  std::string_view varPrefix;  // of the variable name
};

class DefinitionList : public Dispatch {
 public:
  // Cursors, also read and written by scripts.
  std::string curName;
  std::int16_t curSeq = 0;

  std::int32_t Count() const { return items_->count(); }
  // A number is a position in insertion order, a string a key; the cursors
  // follow a found item. Anything else, an unknown key or a position out of
  // range gives none and leaves the cursors alone.
  Ref<DefinitionObject> Item(const Variant& index);
  // The item with that sequence number, or none; the cursors stay.
  Ref<DefinitionObject> Seq(std::int16_t index) const;
  // Move the cursors to the item with that key or sequence number, if any.
  void SetItem(const Variant& index);
  void SetSeq(std::int16_t index);

  // C++ access. find() is by key; at() by offset from 0 in insertion order;
  // bySequence() gives the items ordered by their sequence numbers.
  DefinitionObject* find(std::string_view key) const;
  DefinitionObject& at(std::int32_t offset) const;
  std::vector<DefinitionObject*> bySequence() const;
  std::int16_t seqOf(DefinitionObject& item) const;
  std::string nameOf(DefinitionObject& item) const;

  Ref<EnumVariant> newEnum() override { return items_->newEnum(); }

 protected:
  explicit DefinitionList(ListAttributes names);

  virtual Ref<DefinitionObject> createItem() const = 0;

  // Exists: `index` taken as text, key test only.
  bool exists(const Variant& index) const { return find(index.toText()) != nullptr; }

  // Add, steps shared by tables and fields. An item whose name differs from
  // `name` only in case (a name attribute that the caller changed without
  // a rename) is what Add renames instead; see differentlyCasedName().
  std::optional<std::string> differentlyCasedName(const std::string& name) const;
  // Appends a new item named `name` with the next sequence number and moves
  // the cursors to it. `loading` assigns name and number without dirty marks.
  DefinitionObject& appendNew(const std::string& name, bool loading);

  // Change, steps shared by tables and fields: checks the names, re-keys the
  // item, rebuilds its variable name and moves the cursors.
  enum class Rename { Refused, SameName, Renamed };
  Rename rekey(const std::string& oldName, const std::string& newName);

  // Delete, steps shared by tables and fields. The item of `key`, or null
  // for "" and unknown keys; then closing its sequence gap; then removal.
  DefinitionObject* itemToDelete(const std::string& key) const;
  void closeSequenceGap(DefinitionObject& leaving);
  void remove(const std::string& key) { items_->remove(Variant(key)); }

  void setCursors(DefinitionObject& item);
  // Rebuilds each item's variable name from its name.
  void rebuildVariableNames();

  // The members both lists have; their own tables extend this one.
  static const MemberTable& listMembers();

 private:
  ListAttributes names_;
  Ref<CSuperCollection> items_;
};

}  // namespace bw
