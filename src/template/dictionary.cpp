#include "template/dictionary.h"

#include <functional>
#include <vector>

#include "template/list_enumerator.h"
#include "template/scripting_error.h"

namespace bw {
namespace {

// The families of keys; keys of different families never match.
enum class KeyFamily : std::uint8_t { Empty, Null, Boolean, Number, Date, String, Object };

KeyFamily familyOf(const Variant& key) {
  switch (key.type()) {
    case VarType::Empty:
      return KeyFamily::Empty;
    case VarType::Null:
      return KeyFamily::Null;
    case VarType::Boolean:
      return KeyFamily::Boolean;
    case VarType::Date:
      return KeyFamily::Date;
    case VarType::String:
      return KeyFamily::String;
    case VarType::Object:
      return KeyFamily::Object;
    case VarType::Array:
      raiseBasicError(basic_error::kTypeMismatch);
    default:
      return KeyFamily::Number;
  }
}

// Numbers and dates by value (std::hash<double> agrees with ==, so 0 and -0
// are one key).
double numberOf(const Variant& key) {
  return key.type() == VarType::Date ? key.dbl() : key.toDouble().value_or(0);
}

}  // namespace

std::size_t Dictionary::KeyHash::operator()(const Variant& key) const {
  const KeyFamily family = familyOf(key);
  std::size_t h = 0;
  switch (family) {
    case KeyFamily::Boolean:
      h = key.boolean();
      break;
    case KeyFamily::Number:
    case KeyFamily::Date:
      h = std::hash<double>{}(numberOf(key));
      break;
    case KeyFamily::String:
      h = ignoreCase ? text::ihash(key.string()) : std::hash<std::string_view>{}(key.string());
      break;
    case KeyFamily::Object:
      h = std::hash<const Dispatch*>{}(key.object());
      break;
    default:
      break;
  }
  return h ^ (static_cast<std::size_t>(family) * 0x9E3779B97F4A7C15ull);
}

bool Dictionary::KeyEqual::operator()(const Variant& a, const Variant& b) const {
  const KeyFamily family = familyOf(a);
  if (family != familyOf(b)) return false;
  switch (family) {
    case KeyFamily::Boolean:
      return a.boolean() == b.boolean();
    case KeyFamily::Number:
    case KeyFamily::Date:
      return numberOf(a) == numberOf(b);
    case KeyFamily::String:
      return ignoreCase ? text::iequals(a.string(), b.string()) : a.string() == b.string();
    case KeyFamily::Object:
      return a.object() == b.object();
    default:
      return true;  // Empty and Null
  }
}

Dictionary::Dictionary() : index_(0, KeyHash{false}, KeyEqual{false}) {}

Dictionary::Index::const_iterator Dictionary::find(const Variant& key) const {
  return index_.find(key);
}

Dictionary::Entry& Dictionary::insert(const Variant& key, const Variant& item) {
  entries_.push_back(Entry{key, item});
  try {
    index_.emplace(key, std::prev(entries_.end()));
  } catch (...) {
    entries_.pop_back();
    throw;
  }
  return entries_.back();
}

void Dictionary::Add(const Variant& key, const Variant& item) {
  if (find(key) != index_.end()) raiseScriptingError(scripting_error::kKeyInUse);
  insert(key, item);
}

bool Dictionary::Exists(const Variant& key) const {
  return find(key) != index_.end();
}

Variant Dictionary::Item(const Variant& key) {
  const auto it = find(key);
  return it != index_.end() ? it->second->item : insert(key, Variant()).item;
}

void Dictionary::setItem(const Variant& key, const Variant& item) {
  const auto it = find(key);
  if (it == index_.end()) {
    insert(key, item);
    return;
  }
  // The old item is released after the store is whole: releasing an object
  // may run code that looks at this dictionary.
  [[maybe_unused]] Variant released = std::exchange(it->second->item, item);
}

void Dictionary::renameKey(const Variant& oldKey, const Variant& newKey) {
  const auto it = find(oldKey);
  if (it == index_.end()) raiseScriptingError(scripting_error::kElementNotFound);
  const auto clash = find(newKey);
  if (clash != index_.end() && clash != it) raiseScriptingError(scripting_error::kKeyInUse);
  auto node = index_.extract(it);
  node.key() = newKey;
  node.mapped()->key = newKey;
  index_.insert(std::move(node));
}

Variant Dictionary::Keys() const {
  std::vector<Variant> keys;
  keys.reserve(entries_.size());
  for (const Entry& e : entries_) keys.push_back(e.key);
  return Variant::array(std::move(keys));
}

Variant Dictionary::Items() const {
  std::vector<Variant> items;
  items.reserve(entries_.size());
  for (const Entry& e : entries_) items.push_back(e.item);
  return Variant::array(std::move(items));
}

void Dictionary::Remove(const Variant& key) {
  const auto it = find(key);
  if (it == index_.end()) raiseScriptingError(scripting_error::kElementNotFound);
  Entries released;
  released.splice(released.end(), entries_, it->second);
  index_.erase(it);
}

void Dictionary::RemoveAll() {
  Entries released;
  released.swap(entries_);
  index_.clear();
}

void Dictionary::setCompareMode(std::int32_t mode) {
  if (!entries_.empty() || (mode != 0 && mode != 1)) {
    raiseScriptingError(scripting_error::kInvalidArgument);
  }
  ignoreCase_ = mode == 1;
  index_ = Index(0, KeyHash{ignoreCase_}, KeyEqual{ignoreCase_});
}

namespace {

// `Key` can only be written: `d.Key(old) = new`.
Member renameKeyMember() {
  return Member{"Key",
                Member::Kind::Property,
                1,
                1,
                nullptr,
                [](Dispatch& self, const Member&, Args args, const Variant& value) {
                  static_cast<Dictionary&>(self).renameKey(args[0], value);
                }};
}

}  // namespace

Ref<EnumVariant> Dictionary::newEnum() {
  return make<ListEnumerator>(Keys().items());
}

const MemberTable& Dictionary::members() const {
  using D = Dictionary;
  static const MemberTable table{
      method<&D::Add>("Add"),
      method<&D::Exists>("Exists"),
      asDefault(property<&D::Item, &D::setItem>("Item")),
      renameKeyMember(),
      method<&D::Keys>("Keys"),
      method<&D::Items>("Items"),
      method<&D::Remove>("Remove"),
      method<&D::RemoveAll>("RemoveAll"),
      property<&D::Count>("Count"),
      property<&D::CompareMode, &D::setCompareMode>("CompareMode"),
  };
  return table;
}

}  // namespace bw
