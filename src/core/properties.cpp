#include "core/properties.h"

#include "core/agp_vars.h"

namespace bw {

// ---------------------------------------------------------------------------
// PropertyLayout

PropertyLayout::PropertyLayout(std::vector<AttributeDef> defs) : defs_(std::move(defs)) {
  kinds_.reserve(defs_.size());
  index_.reserve(defs_.size());
  for (std::size_t slot = 0; slot < defs_.size(); ++slot) {
    kinds_.push_back(defs_[slot].kind());
    index_.emplace(defs_[slot].name, static_cast<std::uint32_t>(slot));
  }
}

Ref<const PropertyLayout> PropertyLayout::create(std::vector<AttributeDef> defs) {
  return Ref<const PropertyLayout>(new PropertyLayout(std::move(defs)));
}

std::optional<std::size_t> PropertyLayout::find(std::string_view name) const {
  auto it = index_.find(name);
  if (it == index_.end()) return std::nullopt;
  return it->second;
}

Ref<const PropertyLayout> PropertyLayout::withAdded(const AttributeDef& def) const {
  for (const auto& child : derived_)
    if (child->defs_.back() == def) return child;
  std::vector<AttributeDef> defs = defs_;
  defs.push_back(def);
  derived_.push_back(create(std::move(defs)));
  return derived_.back();
}

Ref<const PropertyLayout> PropertyLayout::withReplaced(std::size_t slot, AttributeDef def) const {
  std::vector<AttributeDef> defs = defs_;
  defs[slot] = std::move(def);
  return create(std::move(defs));
}

Ref<const PropertyLayout> PropertyLayout::withRemoved(std::size_t slot) const {
  std::vector<AttributeDef> defs = defs_;
  defs.erase(defs.begin() + static_cast<std::ptrdiff_t>(slot));
  return create(std::move(defs));
}

// ---------------------------------------------------------------------------
// AGProperties

AGProperties::AGProperties(Ref<const PropertyLayout> layout)
    : layout_(std::move(layout)), values_(layout_->size()) {}

void AGProperties::reset(Ref<const PropertyLayout> layout) {
  layout_ = std::move(layout);
  values_.assign(layout_->size(), Variant());
}

bool AGProperties::add(AttributeDef def) {
  if (def.name.empty() || find(def.name)) return false;
  layout_ = layout_->withAdded(def);
  // A bag gains few attributes after registration; doubling the vector for
  // one of them would double the memory of every bag.
  if (values_.size() == values_.capacity()) values_.reserve(values_.size() + 4);
  values_.emplace_back();
  return true;
}

bool AGProperties::Add(const std::string& name, std::optional<std::string> dataType,
                       std::optional<bool> regSave, std::optional<std::int32_t> regFormat,
                       std::optional<bool> fileSave, std::optional<bool> sync) {
  return add(AttributeDef{name, dataType.value_or("String"), regSave.value_or(false),
                          regFormat.value_or(0), fileSave.value_or(true), sync.value_or(true)});
}

std::size_t AGProperties::ensure(std::string_view name) {
  if (auto slot = find(name)) return *slot;
  add(AttributeDef{std::string(name)});
  return values_.size() - 1;
}

void AGProperties::setValueAt(std::size_t slot, Variant v) {
  // Once dirty, no write can make the project cleaner: skip the comparison,
  // which costs two text conversions on every write of a schema load.
  AGPVarsData& vars = AGPVars();
  if (!vars.Dirty && layout_->def(slot).fileSave && values_[slot].toText() != v.toText())
    vars.Dirty = true;
  values_[slot] = std::move(v);
}

void AGProperties::setDefAt(std::size_t slot, AttributeDef def) {
  if (layout_->def(slot) == def) return;
  layout_ = layout_->withReplaced(slot, std::move(def));
}

bool AGProperties::removeAt(std::size_t slot) {
  if (slot >= values_.size()) return false;
  layout_ = layout_->withRemoved(slot);
  values_.erase(values_.begin() + static_cast<std::ptrdiff_t>(slot));
  return true;
}

bool AGProperties::Change(const std::string& oldName, const std::string& newName) {
  if (oldName.empty() || newName.empty()) return false;
  if (oldName == newName) return true;
  auto slot = find(oldName);
  if (!slot) return false;
  if (!text::iequals(oldName, newName) && find(newName)) return false;
  AttributeDef def = defAt(*slot);
  def.name = newName;
  setDefAt(*slot, std::move(def));
  return true;
}

Variant AGProperties::Delete(const Variant& index) {
  const std::string name = index.toText();
  if (name.empty()) return Variant(false);
  auto slot = find(name);
  return Variant(slot && removeAt(*slot));
}

bool AGProperties::PropertyExist(const Variant& index) const {
  return find(index.toText()).has_value();
}

Ref<AGProperty> AGProperties::Item(const Variant& index) {
  const std::string name = index.toText();
  std::size_t slot = ensure(name);
  return make<AGProperty>(refTo(this), defAt(slot).name);
}

namespace {

// Walks the bag by slot. An attribute added during the walk is visited; one
// removed before the cursor shifts the rest down by one, which may skip the
// next attribute: bags are not edited while they are enumerated.
class BagEnumerator : public EnumVariant {
 public:
  BagEnumerator(Ref<AGProperties> bag, std::size_t next) : bag_(std::move(bag)), next_(next) {}

  bool next(Variant& item) override {
    if (next_ >= bag_->size()) return false;
    item = Variant(bag_->Item(Variant(bag_->defAt(next_++).name)));
    return true;
  }
  void reset() override { next_ = 0; }
  Ref<EnumVariant> clone() override { return make<BagEnumerator>(bag_, next_); }

 private:
  Ref<AGProperties> bag_;
  std::size_t next_;
};

}  // namespace

Ref<EnumVariant> AGProperties::newEnum() { return make<BagEnumerator>(refTo(this), 0); }

const MemberTable& AGProperties::members() const {
  static const MemberTable table{
      method<&AGProperties::Add>("Add"),
      method<&AGProperties::Change>("Change"),
      method<&AGProperties::Count>("Count"),
      method<&AGProperties::Delete>("Delete"),
      method<&AGProperties::PropertyExist>("PropertyExist"),
      asDefault(property<&AGProperties::Item>("Item")),
      method<&AGProperties::NewEnum_prp>("NewEnum_prp"),
  };
  return table;
}

// ---------------------------------------------------------------------------
// AGProperty

AGProperty::AGProperty(Ref<AGProperties> bag, std::string name)
    : bag_(std::move(bag)), name_(std::move(name)) {}

template <typename Edit>
void AGProperty::editDef(Edit edit) {
  std::size_t slot = bag_->ensure(name_);
  AttributeDef def = bag_->defAt(slot);
  edit(def);
  bag_->setDefAt(slot, std::move(def));
}

// Name and Key are one member. Renaming goes through the bag, so that the
// name stays the key it is found by.
void AGProperty::setName(const std::string& name) {
  if (bag_->Change(name_, name)) name_ = name;
}

void AGProperty::setDataType(const std::string& v) {
  editDef([&](AttributeDef& d) { d.dataType = v; });
}
void AGProperty::setRegSave(bool v) {
  editDef([&](AttributeDef& d) { d.regSave = v; });
}
void AGProperty::setRegFormat(std::int32_t v) {
  editDef([&](AttributeDef& d) { d.regFormat = v; });
}
void AGProperty::setFileSave(bool v) {
  editDef([&](AttributeDef& d) { d.fileSave = v; });
}
void AGProperty::setSync(bool v) {
  editDef([&](AttributeDef& d) { d.sync = v; });
}

const MemberTable& AGProperty::members() const {
  static const MemberTable table{
      property<&AGProperty::Name, &AGProperty::setName>("Name"),
      property<&AGProperty::Name, &AGProperty::setName>("Key"),
      property<&AGProperty::DataType, &AGProperty::setDataType>("DataType"),
      asDefault(property<&AGProperty::Value, &AGProperty::setValue>("Value")),
      property<&AGProperty::RegSave, &AGProperty::setRegSave>("RegSave"),
      property<&AGProperty::RegFormat, &AGProperty::setRegFormat>("RegFormat"),
      property<&AGProperty::FileSave, &AGProperty::setFileSave>("FileSave"),
      property<&AGProperty::Sync, &AGProperty::setSync>("Sync"),
  };
  return table;
}

}  // namespace bw
