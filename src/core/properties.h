// Attribute bags: AGProperties and AGProperty.
//
// Nearly every setting is an attribute in a bag: a name, a declared type, a
// value and three flags saying where the value is persisted. A project has
// one bag; so does each of its (possibly 50,000) fields.
//
// Bags are flyweights. What the attributes of a class are (names, types,
// flags, order) lives once, in an immutable PropertyLayout that all bags of
// that class share; a bag holds only a layout reference and a vector of
// values indexed by slot:
//
//   field 1: [layout*] [v0 v1 v2 ... v146]      layout: FldName String ...
//   field 2: [layout*] [v0 v1 v2 ... v146]  --> (shared, immutable,
//   field 3: [layout*] [v0 v1 v2 ... v146]       hash of folded names)
//
// Adding an attribute moves the bag to a derived layout, and the derivation
// is cached on the parent, so bags that add the same attributes in the same
// order share the derived layout too. Renaming, deleting or re-flagging an
// attribute gives the bag a private copy of its layout. A lookup by name is
// one probe of a case-insensitive hash.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/conversions.h"
#include "core/dispatch.h"

namespace bw {

struct AttributeDef {
  std::string name;
  std::string dataType = "String";  // as registered; see DataKind
  bool regSave = false;             // part of the defaults in the settings store
  std::int32_t regFormat = 0;       // settings value type when regSave: 1 text, 4 number
  bool fileSave = true;             // written to and read from the project file
  bool sync = true;                 // a user setting, carried over when definitions are rebuilt

  DataKind kind() const { return dataKindOf(dataType); }
  bool operator==(const AttributeDef&) const = default;
};

class PropertyLayout : public RefCounted {
 public:
  static Ref<const PropertyLayout> create(std::vector<AttributeDef> defs);

  std::size_t size() const { return defs_.size(); }
  const AttributeDef& def(std::size_t slot) const { return defs_[slot]; }
  DataKind kind(std::size_t slot) const { return kinds_[slot]; }
  std::optional<std::size_t> find(std::string_view name) const;

  // The layout with one more attribute at the end; shared between bags.
  Ref<const PropertyLayout> withAdded(const AttributeDef& def) const;
  // A private copy with one attribute replaced or removed.
  Ref<const PropertyLayout> withReplaced(std::size_t slot, AttributeDef def) const;
  Ref<const PropertyLayout> withRemoved(std::size_t slot) const;

 private:
  explicit PropertyLayout(std::vector<AttributeDef> defs);

  std::vector<AttributeDef> defs_;
  std::vector<DataKind> kinds_;
  std::unordered_map<std::string, std::uint32_t, text::CaseInsensitiveHash,
                     text::CaseInsensitiveEqual>
      index_;
  mutable std::vector<Ref<const PropertyLayout>> derived_;  // cached withAdded results
};

class AGProperty;

class AGProperties : public Dispatch {
 public:
  explicit AGProperties(Ref<const PropertyLayout> layout);

  // Automation members.
  bool Add(const std::string& name, std::optional<std::string> dataType,
           std::optional<bool> regSave, std::optional<std::int32_t> regFormat,
           std::optional<bool> fileSave, std::optional<bool> sync);
  bool Change(const std::string& oldName, const std::string& newName);
  std::int32_t Count() const { return static_cast<std::int32_t>(values_.size()); }
  Variant Delete(const Variant& index);
  bool PropertyExist(const Variant& index) const;
  Ref<AGProperty> Item(const Variant& index);
  Ref<EnumVariant> NewEnum_prp() { return newEnum(); }

  // Typed access for C++ callers.
  bool add(AttributeDef def);
  std::optional<std::size_t> find(std::string_view name) const { return layout_->find(name); }
  // The slot of `name`, adding it as an on-demand "String" attribute when
  // absent; reading an unregistered attribute creates it.
  std::size_t ensure(std::string_view name);
  const Variant& value(std::string_view name) { return values_[ensure(name)]; }
  void setValue(std::string_view name, Variant v) { setValueAt(ensure(name), std::move(v)); }

  std::size_t size() const { return values_.size(); }
  const AttributeDef& defAt(std::size_t slot) const { return layout_->def(slot); }
  DataKind kindAt(std::size_t slot) const { return layout_->kind(slot); }
  const Variant& valueAt(std::size_t slot) const { return values_[slot]; }
  // Stores the value as given; marks the project dirty when the attribute
  // is saved to the file and its text changes.
  void setValueAt(std::size_t slot, Variant v);
  // Stores the value without the dirty rule; for loading and resetting.
  void assignAt(std::size_t slot, Variant v) { values_[slot] = std::move(v); }
  void setDefAt(std::size_t slot, AttributeDef def);
  bool removeAt(std::size_t slot);

  // Drops every attribute and starts again from `layout`, all values empty.
  void reset(Ref<const PropertyLayout> layout);

  const Ref<const PropertyLayout>& layout() const { return layout_; }

  Ref<EnumVariant> newEnum() override;
  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGProperties"; }

 private:
  Ref<const PropertyLayout> layout_;
  std::vector<Variant> values_;
};

// One attribute of a bag, as scripts and the host see it. It is a handle:
// it names the attribute and reads and writes through the bag.
class AGProperty : public Dispatch {
 public:
  AGProperty(Ref<AGProperties> bag, std::string name);

  std::string Name() const { return name_; }
  void setName(const std::string& name);
  std::string DataType() { return def().dataType; }
  void setDataType(const std::string& v);
  Variant Value() { return bag_->value(name_); }
  void setValue(const Variant& v) { bag_->setValue(name_, v); }
  bool RegSave() { return def().regSave; }
  void setRegSave(bool v);
  std::int32_t RegFormat() { return def().regFormat; }
  void setRegFormat(std::int32_t v);
  bool FileSave() { return def().fileSave; }
  void setFileSave(bool v);
  bool Sync() { return def().sync; }
  void setSync(bool v);

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGProperty"; }

 private:
  const AttributeDef& def() { return bag_->defAt(bag_->ensure(name_)); }
  template <typename Edit>
  void editDef(Edit edit);

  Ref<AGProperties> bag_;
  std::string name_;
};

}  // namespace bw
