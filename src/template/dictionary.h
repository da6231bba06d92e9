// Dictionary: the keyed store that scripts create as "Scripting.Dictionary".
//
// Keys are Variants and compare the way script authors expect:
//   - numbers by value, whatever their type: 1, 1.0 and the Integer 1 are one
//     key; a number and a string never are (1 and "1" are two keys);
//   - strings by code value (CompareMode 0) or without regard to case
//     (CompareMode 1, Unicode simple case folding);
//   - Booleans, Dates, Empty and Null each only with their own type;
//   - objects by identity. Arrays cannot be keys (error 13).
//
// Layout. Entries sit in a list in insertion order, which Keys(), Items()
// and enumeration follow; a hash index maps each key to its list node, so a
// lookup, an insertion and a removal each cost one hash probe:
//
//   entries_  {k1, item} <-> {k2, item} <-> {k3, item}
//   index_    k2 -> node 2, k1 -> node 1, k3 -> node 3   (hash order)
//
// Errors: 457 for a key that is in use, 32811 for a missing one, 5 for a
// CompareMode change that is not allowed.
#pragma once

#include <cstdint>
#include <list>
#include <unordered_map>

#include "core/dispatch.h"

namespace bw {

class Dictionary : public Dispatch {
 public:
  Dictionary();

  void Add(const Variant& key, const Variant& item);
  bool Exists(const Variant& key) const;
  // Reading a missing key adds it with an Empty item, as scripts rely on.
  Variant Item(const Variant& key);
  // Replaces the item of `key`, or adds the key.
  void setItem(const Variant& key, const Variant& item);
  // Renames a key in place; the entry keeps its position. Renaming a key to
  // itself in another spelling is allowed under CompareMode 1.
  void renameKey(const Variant& oldKey, const Variant& newKey);
  Variant Keys() const;
  Variant Items() const;
  void Remove(const Variant& key);
  void RemoveAll();
  std::int32_t Count() const { return static_cast<std::int32_t>(entries_.size()); }

  // 0 compares string keys by code value, 1 without regard to case. It may
  // change only while the dictionary is empty, since stored keys would
  // otherwise collide or split.
  std::int32_t CompareMode() const { return ignoreCase_ ? 1 : 0; }
  void setCompareMode(std::int32_t mode);

  // Enumerates the keys as they are when the walk starts.
  Ref<EnumVariant> newEnum() override;
  const MemberTable& members() const override;
  std::string_view typeName() const override { return "Dictionary"; }

 private:
  struct KeyHash {
    bool ignoreCase;
    std::size_t operator()(const Variant& key) const;
  };
  struct KeyEqual {
    bool ignoreCase;
    bool operator()(const Variant& a, const Variant& b) const;
  };
  struct Entry {
    Variant key;
    Variant item;
  };
  using Entries = std::list<Entry>;
  using Index = std::unordered_map<Variant, Entries::iterator, KeyHash, KeyEqual>;

  Index::const_iterator find(const Variant& key) const;
  Entry& insert(const Variant& key, const Variant& item);

  Entries entries_;
  Index index_;
  bool ignoreCase_ = false;
};

}  // namespace bw
