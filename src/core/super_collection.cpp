#include "core/super_collection.h"

#include <algorithm>
#include <cassert>
#include <iterator>

#include "platform/text.h"

namespace bw {

void raiseCollectionError(std::int32_t number) {
  using namespace collection_error;
  const char* description = "Undifined error";  // kUndefined; the spelling is part of the interface
  switch (number) {
    case kAlreadyInitialized:
      description = "Collection already initialized";
      break;
    case kKeyNotFound:
      description = "Key not found.";
      break;
    case kMoveInLoop:
      description = "Move not allowed while in For...Each loop.";
      break;
    case kInvalidDatatype:
      description = "Invalid datatype";
      break;
    case kNoPositionSupplied:
      description = "No position supplied.";
      break;
  }
  throw AutomationError(number, description);
}

namespace {

// Keeps an object's own Key in step with its key in the collection, when
// the object has a Key it lets others set.
void setObjectKey(const Variant& value, std::string_view key) {
  Dispatch* object = value.object();
  if (!object) return;
  const Member* keyMember = object->members().find("Key");
  if (keyMember && keyMember->put && !keyMember->takesArguments()) object->put("Key", Variant(key));
}

}  // namespace

// ---------------------------------------------------------------------------
// CSuperCollection

CSuperCollection::~CSuperCollection() {
  for (cEnumerationObject* enumerator : enumerators_) enumerator->detach();
}

// Keys are sorted under CompareMode, so it may change only while no key is
// stored; BaseIndex likewise, so that no position handed out changes meaning.
void CSuperCollection::requireEmpty() const {
  if (!entries_.empty()) raiseCollectionError(collection_error::kAlreadyInitialized);
}

void CSuperCollection::setCompareMode(std::int32_t mode) {
  requireEmpty();
  if (mode != 0 && mode != 1) raiseBasicError(basic_error::kSubscriptOutOfRange);
  compareMode_ = mode;
}

void CSuperCollection::setBaseIndex(std::int32_t base) {
  requireEmpty();
  baseIndex_ = base;
}

void CSuperCollection::add(Variant item, std::string_view key, InsertMode mode,
                           std::int32_t position) {
  const std::size_t offset = insertionOffset(mode, position);
  if (findOffset(key)) raiseBasicError(basic_error::kKeyInUse);
  insertEntry(offset, Entry{std::string(key), std::move(item)});
}

const Variant& CSuperCollection::item(const Variant& indexKey) const {
  return entries_[offsetOf(indexKey)].value;
}

const Variant& CSuperCollection::itemAt(std::int32_t position) const {
  return entries_[offsetOfPosition(position)].value;
}

const Variant* CSuperCollection::find(std::string_view key) const {
  const std::optional<std::size_t> offset = findOffset(key);
  return offset ? &entries_[*offset].value : nullptr;
}

void CSuperCollection::setItem(const Variant& indexKey, Variant value) {
  if (!allowItemAssignments_) raiseBasicError(basic_error::kObjectDoesNotSupport);
  // The old value is released when `value` goes, after the store is whole.
  std::swap(entries_[offsetOf(indexKey)].value, value);
}

void CSuperCollection::remove(const Variant& indexKey) {
  // The taken entry, and with it the value, goes once the stores agree again:
  // releasing an object may run code that looks at this collection.
  takeEntry(offsetOf(indexKey));
}

void CSuperCollection::clear() {
  std::vector<Entry> released;
  released.swap(entries_);
  keyIndex_.clear();
  for (cEnumerationObject* enumerator : enumerators_) enumerator->reset();
}

std::int32_t CSuperCollection::keyExists(std::string_view key) const {
  const std::optional<std::size_t> offset = findOffset(key);
  return offset ? positionOf(*offset) : kNoPosition;
}

const std::string& CSuperCollection::keyAt(std::int32_t position) const {
  return entries_[offsetOfPosition(position)].key;
}

// A new key that is in use is refused unless it is the old key in another
// spelling ("abc" to "ABC" under CompareMode 1), which the item then takes.
// The clash is tested before the old key is looked up, so that it is what
// gets reported when both are wrong.
void CSuperCollection::changeKey(std::string_view oldKey, std::string_view newKey) {
  if (findOffset(newKey) && !text::iequals(oldKey, newKey)) {
    raiseBasicError(basic_error::kKeyInUse);
  }
  rekey(offsetOfKey(oldKey), newKey);
}

void CSuperCollection::changeKeyAt(std::int32_t position, std::string_view newKey) {
  rekey(offsetOfPosition(position), newKey);
}

std::int32_t CSuperCollection::moveItem(const Variant& moved, const Variant& target) {
  // Moving would let a walk meet an item twice or never.
  if (!enumerators_.empty()) raiseCollectionError(collection_error::kMoveInLoop);
  const std::size_t from = offsetOf(moved);
  const std::size_t to = offsetOf(target);
  insertEntry(to, takeEntry(from));
  return positionOf(to);
}

Ref<CKeys> CSuperCollection::keys() const {
  auto list = make<CSuperCollection>();
  list->baseIndex_ = baseIndex_;
  list->entries_.reserve(keyIndex_.size());
  for (std::uint32_t offset : keyIndex_) {
    list->add(make<cKey>(entries_[offset].key, positionOf(offset)));
  }
  return make<CKeys>(std::move(list));
}

Ref<EnumVariant> CSuperCollection::newEnum() {
  return Ref<EnumVariant>(new cEnumerationObject(this, 0));
}

const MemberTable& CSuperCollection::members() const {
  using C = CSuperCollection;
  static const MemberTable table{
      method<&C::Add>("Add"),
      method<&C::remove>("Remove"),
      asDefault(property<&C::item, &C::setItem>("Item")),
      property<&C::count>("Count"),
      property<&C::keys>("Keys"),
      property<&C::keyAt>("Key"),
      method<&C::KeyExists>("KeyExists"),
      method<&C::ChangeKey>("ChangeKey"),
      method<&C::ChangeKeyForIndex>("ChangeKeyForIndex"),
      method<&C::moveItem>("MoveItem"),
      method<&C::clear>("Clear"),
      property<&C::newEnum>("NewEnum"),
      property<&C::compareMode, &C::setCompareMode>("CompareMode"),
      property<&C::baseIndex, &C::setBaseIndex>("BaseIndex"),
      property<&C::allowItemAssignments, &C::setAllowItemAssignments>("AllowItemAsignments"),
  };
  return table;
}

void CSuperCollection::Add(const Variant& vItem, std::optional<std::string> sKey,
                           std::optional<std::int32_t> eInsert,
                           std::optional<std::int32_t> nPosition) {
  const auto mode = eInsert.value_or(static_cast<std::int32_t>(InsertMode::Last));
  add(vItem, sKey.value_or(""), static_cast<InsertMode>(mode), nPosition.value_or(kNoPosition));
}

// --- key index -------------------------------------------------------------

int CSuperCollection::compareKeys(std::string_view a, std::string_view b) const {
  // string_view compares bytes as unsigned, which is code point order in UTF-8.
  return compareMode_ == 1 ? text::icompare(a, b) : a.compare(b);
}

// The slot of keyIndex_ that holds `key`, or where it would go.
CSuperCollection::KeyIndex::const_iterator CSuperCollection::keySlot(std::string_view key) const {
  return std::lower_bound(keyIndex_.begin(), keyIndex_.end(), key,
                          [this](std::uint32_t offset, std::string_view wanted) {
                            return compareKeys(entries_[offset].key, wanted) < 0;
                          });
}

// "" is never a key, so it is never found.
std::optional<std::size_t> CSuperCollection::findOffset(std::string_view key) const {
  if (key.empty()) return std::nullopt;
  const auto slot = keySlot(key);
  if (slot == keyIndex_.end() || compareKeys(entries_[*slot].key, key) != 0) return std::nullopt;
  return *slot;
}

void CSuperCollection::indexKey(std::size_t offset) {
  const std::string& key = entries_[offset].key;
  if (key.empty()) return;
  keyIndex_.insert(keySlot(key), static_cast<std::uint32_t>(offset));
}

void CSuperCollection::unindexKey(std::size_t offset) {
  const std::string& key = entries_[offset].key;
  if (key.empty()) return;
  const auto slot = keySlot(key);
  assert(slot != keyIndex_.end() && *slot == offset && "key index out of step with the items");
  keyIndex_.erase(slot);
}

// Index entries pointing at `from` or later follow their items when an
// entry is inserted or taken there.
void CSuperCollection::shiftIndexedOffsets(std::size_t from, std::int32_t delta) {
  for (std::uint32_t& offset : keyIndex_) {
    if (offset >= from) offset += static_cast<std::uint32_t>(delta);  // modulo 2^32
  }
}

// --- positions --------------------------------------------------------------

std::size_t CSuperCollection::offsetOf(const Variant& indexKey) const {
  if (indexKey.isString()) return offsetOfKey(indexKey.string());
  if (!indexKey.isNumeric()) raiseCollectionError(collection_error::kInvalidDatatype);
  const std::optional<std::int32_t> position = indexKey.toLong();
  if (!position) raiseBasicError(basic_error::kSubscriptOutOfRange);
  return offsetOfPosition(*position);
}

std::size_t CSuperCollection::offsetOfKey(std::string_view key) const {
  const std::optional<std::size_t> offset = findOffset(key);
  if (!offset) raiseCollectionError(collection_error::kKeyNotFound);
  return *offset;
}

std::size_t CSuperCollection::offsetOfPosition(std::int32_t position) const {
  const std::int64_t offset = std::int64_t{position} - baseIndex_;
  if (offset < 0 || offset >= std::ssize(entries_)) {
    raiseBasicError(basic_error::kSubscriptOutOfRange);
  }
  return static_cast<std::size_t>(offset);
}

std::int32_t CSuperCollection::positionOf(std::size_t offset) const {
  return static_cast<std::int32_t>(baseIndex_ + static_cast<std::int64_t>(offset));
}

// Where Add puts a new item. A given position must name an item, or be
// BaseIndex while the collection is empty, whatever the mode. Everything is
// checked before anything changes, so a refused Add leaves no trace.
std::size_t CSuperCollection::insertionOffset(InsertMode mode, std::int32_t position) const {
  std::optional<std::size_t> anchor;
  if (position != kNoPosition) {
    anchor = entries_.empty() && position == baseIndex_ ? 0 : offsetOfPosition(position);
  }
  switch (mode) {
    case InsertMode::Before:
    case InsertMode::After:
      if (!anchor) raiseCollectionError(collection_error::kNoPositionSupplied);
      if (mode == InsertMode::Before) return *anchor;
      if (entries_.empty()) raiseBasicError(basic_error::kSubscriptOutOfRange);  // none to follow
      return *anchor + 1;
    case InsertMode::First:
      return 0;
    default:
      return entries_.size();
  }
}

// --- changes ----------------------------------------------------------------

// Every insertion, removal and move goes through these two, which keep the
// key index and the open enumerators in step with the items.
void CSuperCollection::insertEntry(std::size_t offset, Entry entry) {
  shiftIndexedOffsets(offset, +1);
  entries_.insert(entries_.begin() + offset, std::move(entry));
  indexKey(offset);
  for (cEnumerationObject* enumerator : enumerators_) enumerator->itemInserted(offset);
}

CSuperCollection::Entry CSuperCollection::takeEntry(std::size_t offset) {
  unindexKey(offset);
  Entry entry = std::move(entries_[offset]);
  entries_.erase(entries_.begin() + offset);
  shiftIndexedOffsets(offset, -1);
  for (cEnumerationObject* enumerator : enumerators_) enumerator->itemRemoved(offset);
  return entry;
}

// Gives the entry at `offset` a new key, unless another item holds it.
void CSuperCollection::rekey(std::size_t offset, std::string_view newKey) {
  const std::optional<std::size_t> holder = findOffset(newKey);
  if (holder && *holder != offset) raiseBasicError(basic_error::kKeyInUse);
  unindexKey(offset);
  entries_[offset].key = newKey;
  indexKey(offset);
  setObjectKey(entries_[offset].value, newKey);
}

// ---------------------------------------------------------------------------
// cEnumerationObject

cEnumerationObject::cEnumerationObject(CSuperCollection* source, std::size_t next)
    : source_(source), next_(next) {
  if (!source_) return;
  source_->enumerators_.push_back(this);
  // A collection shared by references stays alive while it is walked. One
  // held by value cannot be kept; it detaches its enumerators when it goes.
  if (source_->refCount() > 0) keepAlive_ = refTo(source_);
}

cEnumerationObject::~cEnumerationObject() {
  if (source_) std::erase(source_->enumerators_, this);
}

bool cEnumerationObject::next(Variant& item) {
  if (!source_ || next_ >= source_->entries_.size()) return false;
  item = source_->entries_[next_++].value;
  return true;
}

Ref<EnumVariant> cEnumerationObject::clone() {
  return Ref<EnumVariant>(new cEnumerationObject(source_, next_));
}

// A change before the cursor moves the items still to come by one; a change
// at or after it is met, or missed, by the walk in its own time.
void cEnumerationObject::itemInserted(std::size_t offset) {
  if (offset < next_) ++next_;
}

void cEnumerationObject::itemRemoved(std::size_t offset) {
  if (offset < next_) --next_;
}

// ---------------------------------------------------------------------------
// cKey and CKeys

const MemberTable& cKey::members() const {
  static const MemberTable table{
      property<&cKey::name>("Name"),
      property<&cKey::associatedIndex>("AssociatedIndex"),
  };
  return table;
}

Ref<cKey> CKeys::item(std::int32_t position) const {
  return Ref<cKey>(static_cast<cKey*>(keys_->itemAt(position).object()));
}

const MemberTable& CKeys::members() const {
  static const MemberTable table{
      property<&CKeys::count>("Count"),
      asDefault(property<&CKeys::item>("Item")),
      property<&CKeys::newEnum>("NewEnum"),
  };
  return table;
}

}  // namespace bw
