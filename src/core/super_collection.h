// CSuperCollection: the engine's one keyed list, and its companions CKeys,
// cKey and cEnumerationObject.
//
// An ordered list of Variants in which an item may also carry a string key.
// Every list class of the definition model wraps one. Positions start at
// BaseIndex (1 unless changed while empty); keys compare by code value
// (CompareMode 0) or without regard to case (CompareMode 1).
//
// Layout. Two arrays, kept in step by every change:
//
//   entries_   [0] {key "b", value}  [1] {key "", value}  [2] {key "a", value}
//   keyIndex_  [0] 2   [1] 0          offsets of keyed entries, sorted by key
//
// entries_ is the item order: an item's position is its offset plus
// BaseIndex. keyIndex_ holds 32-bit offsets into entries_, ordered by the key
// each one points at, so a key lookup is a binary search that compares keys
// in place. Items with the key "" are reachable by position only and have no
// index entry. Inserting or removing at an offset moves one tail of each
// array and adds or subtracts one from the index offsets past that point.
//
// Live enumeration. Each open cEnumerationObject registers with its
// collection and holds the offset of the next item to visit. The collection
// tells every open enumerator of each insertion and removal, and the
// enumerator shifts its cursor when the change lies before it. The relative
// order of existing items never changes during a walk (MoveItem is refused
// while one is open), so a walk visits each remaining item once, whatever is
// added or removed meanwhile; items added behind the cursor are not visited.
//
// Errors are AutomationErrors with the numbers and texts of collection_error
// and of the Basic errors 9 (position out of range), 438 and 457 (key in use).
#pragma once

#include <cstdint>
#include <optional>
#include <ranges>
#include <string>
#include <string_view>
#include <vector>

#include "core/dispatch.h"

namespace bw {

// Stands for "no such position" wherever a position is expected.
inline constexpr std::int32_t kNoPosition = 268435457;  // 0x10000001

namespace collection_error {
inline constexpr std::int32_t kAlreadyInitialized = -2147482368;  // 0x80000500
inline constexpr std::int32_t kKeyNotFound = -2147482367;         // 0x80000501
inline constexpr std::int32_t kMoveInLoop = -2147482366;          // 0x80000502
inline constexpr std::int32_t kInvalidDatatype = -2147482365;     // 0x80000503
inline constexpr std::int32_t kNoPositionSupplied = -2147482364;  // 0x80000504
// Reserved for an inconsistent store; the layout above has no such state,
// but callers may test for the number.
inline constexpr std::int32_t kUndefined = -2147482363;  // 0x80000505
}  // namespace collection_error

// Raises one of the collection_error numbers with its text.
[[noreturn]] void raiseCollectionError(std::int32_t number);

// Where Add puts a new item; any other value leaves it last.
enum class InsertMode : std::int32_t { Before = 1, After = 2, First = 3, Last = 4 };

class cEnumerationObject;
class CKeys;

class CSuperCollection : public Dispatch {
 public:
  CSuperCollection() = default;
  CSuperCollection(const CSuperCollection&) = delete;
  CSuperCollection& operator=(const CSuperCollection&) = delete;
  ~CSuperCollection() override;

  // Settings. CompareMode and BaseIndex may change only while the collection
  // is empty (kAlreadyInitialized otherwise); CompareMode is 0 or 1 (error 9).
  std::int32_t compareMode() const { return compareMode_; }
  void setCompareMode(std::int32_t mode);
  std::int32_t baseIndex() const { return baseIndex_; }
  void setBaseIndex(std::int32_t base);
  bool allowItemAssignments() const { return allowItemAssignments_; }
  void setAllowItemAssignments(bool allow) { allowItemAssignments_ = allow; }

  std::int32_t count() const { return static_cast<std::int32_t>(entries_.size()); }

  // Adds `item`, keyed unless `key` is "". Before and After need `position`,
  // which must name an existing item (or be BaseIndex while empty):
  //   coll.add(table, "Orders");                         // last
  //   coll.add(field, "Id", InsertMode::Before, 1);      // first, by position
  void add(Variant item, std::string_view key = {}, InsertMode mode = InsertMode::Last,
           std::int32_t position = kNoPosition);

  // `indexKey` is a position when numeric (Integer, Long, Single, Double,
  // Byte), a key when a String; any other type raises kInvalidDatatype.
  const Variant& item(const Variant& indexKey) const;
  const Variant& itemAt(std::int32_t position) const;
  // The item with `key`, or nullptr; for callers that test before they use.
  const Variant* find(std::string_view key) const;
  // Replaces a value; raises 438 unless AllowItemAsignments is set.
  void setItem(const Variant& indexKey, Variant value);
  void remove(const Variant& indexKey);
  void clear();

  // Position of the item with `key`, or kNoPosition; "" is never found.
  std::int32_t keyExists(std::string_view key) const;
  const std::string& keyAt(std::int32_t position) const;

  // Gives an item a new key ("" drops it from the key index). An object
  // value with a writable Key property gets the new key there too.
  void changeKey(std::string_view oldKey, std::string_view newKey);
  void changeKeyAt(std::int32_t position, std::string_view newKey);

  // Moves an item (position or key) to the target (position or key) and
  // returns its new position. Refused while an enumerator is open.
  std::int32_t moveItem(const Variant& moved, const Variant& target);

  // The keys in key order, each with the position of its item.
  Ref<CKeys> keys() const;

  // Values in item order, for range-for in C++ callers. A view: the
  // collection must not change while it is in use.
  auto values() const { return entries_ | std::views::transform(&Entry::value); }

  std::int32_t openEnumerators() const { return static_cast<std::int32_t>(enumerators_.size()); }

  Ref<EnumVariant> newEnum() override;
  const MemberTable& members() const override;
  std::string_view typeName() const override { return "CSuperCollection"; }

 private:
  friend class cEnumerationObject;

  struct Entry {
    std::string key;
    Variant value;
  };
  using KeyIndex = std::vector<std::uint32_t>;

  // Automation members whose parameters need converting.
  void Add(const Variant& vItem, std::optional<std::string> sKey,
           std::optional<std::int32_t> eInsert, std::optional<std::int32_t> nPosition);
  std::int32_t KeyExists(const std::string& sKey) const { return keyExists(sKey); }
  void ChangeKey(const std::string& sOldKey, const std::string& sNewKey) {
    changeKey(sOldKey, sNewKey);
  }
  // The position arrives as text from scripts; the automation layer converts it.
  void ChangeKeyForIndex(std::int32_t nIndex, const std::string& sNewKey) {
    changeKeyAt(nIndex, sNewKey);
  }

  int compareKeys(std::string_view a, std::string_view b) const;
  KeyIndex::const_iterator keySlot(std::string_view key) const;
  std::optional<std::size_t> findOffset(std::string_view key) const;

  std::size_t offsetOf(const Variant& indexKey) const;
  std::size_t offsetOfKey(std::string_view key) const;
  std::size_t offsetOfPosition(std::int32_t position) const;
  std::int32_t positionOf(std::size_t offset) const;
  std::size_t insertionOffset(InsertMode mode, std::int32_t position) const;
  void requireEmpty() const;

  void insertEntry(std::size_t offset, Entry entry);
  Entry takeEntry(std::size_t offset);
  void rekey(std::size_t offset, std::string_view newKey);
  void indexKey(std::size_t offset);
  void unindexKey(std::size_t offset);
  void shiftIndexedOffsets(std::size_t from, std::int32_t delta);

  std::vector<Entry> entries_;
  KeyIndex keyIndex_;
  std::vector<cEnumerationObject*> enumerators_;
  std::int32_t compareMode_ = 0;
  std::int32_t baseIndex_ = 1;
  bool allowItemAssignments_ = false;
};

// The enumerator of a CSuperCollection; see "Live enumeration" above. It
// keeps a reference-counted collection alive; if the collection goes first
// (one held by value), the walk simply ends.
class cEnumerationObject : public EnumVariant {
 public:
  ~cEnumerationObject() override;

  bool next(Variant& item) override;
  void reset() override { next_ = 0; }
  Ref<EnumVariant> clone() override;
  std::string_view typeName() const override { return "cEnumerationObject"; }

 private:
  friend class CSuperCollection;

  cEnumerationObject(CSuperCollection* source, std::size_t next);

  void itemInserted(std::size_t offset);
  void itemRemoved(std::size_t offset);
  void detach() { source_ = nullptr; }

  CSuperCollection* source_;
  Ref<CSuperCollection> keepAlive_;
  std::size_t next_;  // offset of the next item to visit
};

// One key of a collection, with the position of its item then.
class cKey : public Dispatch {
 public:
  cKey(std::string name, std::int32_t associatedIndex)
      : name_(std::move(name)), associatedIndex_(associatedIndex) {}

  const std::string& name() const { return name_; }
  std::int32_t associatedIndex() const { return associatedIndex_; }

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "cKey"; }

 private:
  std::string name_;
  std::int32_t associatedIndex_;
};

// The keys of a collection in key order, as taken by CSuperCollection::keys().
// Positions start at the collection's BaseIndex.
class CKeys : public Dispatch {
 public:
  explicit CKeys(Ref<CSuperCollection> keys) : keys_(std::move(keys)) {}

  std::int32_t count() const { return keys_->count(); }
  Ref<cKey> item(std::int32_t position) const;

  Ref<EnumVariant> newEnum() override { return keys_->newEnum(); }
  const MemberTable& members() const override;
  std::string_view typeName() const override { return "CKeys"; }

 private:
  Ref<CSuperCollection> keys_;  // of cKey objects, unkeyed
};

}  // namespace bw
