// The common ground of the definition model's objects (AGPDatabase,
// AGPTable, AGPField): a thin shell over an attribute bag, and the stored
// defaults a new one starts from.
//
// Each object owns one bag on its class's shared layout; all its settings
// are attributes, read and written by name (GetV/SetV, Properties) or
// through the generated typed properties (core/attribute_members.h).
//
// Bulk loading. A new object takes the defaults of its settings section
// (Database, Table, Field), which costs one settings store read per stored
// attribute. A loader that creates thousands of objects opens a
// DefinitionBulkLoad first:
//
//   {
//     DefinitionBulkLoad bulk;                        // sections read once
//     for (each table element) {
//       AGPTable* table = db.Tables()->appendLoaded(name);   // no effects
//       AGProperties& bag = table->bag();
//       bag.assignAt(*bag.find("TblCaption"), caption);     // no dirty marks
//       ...
//     }
//   }                                                 // Dirty as it was
//
// While it lives, new objects copy the defaults read at its start, and when
// it ends AGPVars().Dirty is set back to its value at the start, so that a
// load does not make the project dirty. Bulk loads nest; the outermost one
// owns the cache.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/dispatch.h"
#include "core/properties.h"

namespace bw {

// The values of a layout's stored attributes in one settings section,
// converted to their types. Attributes without a stored value are left out.
class StoredDefaults {
 public:
  static StoredDefaults read(const PropertyLayout& layout, const std::string& section);
  // Assigns the values to a bag of the same layout, without dirty marks.
  void applyTo(AGProperties& bag) const;

 private:
  std::vector<std::pair<std::uint32_t, Variant>> values_;  // slot, value
};

// The defaults of each section, read once during a bulk load.
class StoredDefaultsCache {
 public:
  const StoredDefaults& get(const PropertyLayout& layout, const std::string& section);

 private:
  std::vector<std::pair<std::string, StoredDefaults>> bySection_;
};

class DefinitionBulkLoad {
 public:
  DefinitionBulkLoad();
  ~DefinitionBulkLoad();
  DefinitionBulkLoad(const DefinitionBulkLoad&) = delete;
  DefinitionBulkLoad& operator=(const DefinitionBulkLoad&) = delete;

 private:
  bool ownsCache_ = false;
  bool dirtyBefore_ = false;
};

class DefinitionObject : public Dispatch {
 public:
  Ref<AGProperties> Properties() const { return properties_; }
  // The attribute as text; an unknown name is added as an empty "String".
  std::string GetV(const std::string& name) { return attrText(name); }
  // Stores the value converted to the attribute's type; an unknown name is
  // added as "String" and takes the value as given.
  Variant SetV(const std::string& name, const std::string& value);

  // Attribute values for C++ callers, as on AGP: attr() as stored,
  // typedAttr() in the declared type (what the typed properties read),
  // setAttr() as Properties.Item(name).Value is written.
  const Variant& attr(std::string_view name) { return properties_->value(name); }
  Variant typedAttr(std::string_view name);
  std::string attrText(std::string_view name) { return attr(name).toText(); }
  bool attrBool(std::string_view name) { return typedAttr(name).boolean(); }
  std::int16_t attrInteger(std::string_view name) { return typedAttr(name).integer(); }
  void setAttr(std::string_view name, Variant value) { properties_->setValue(name, std::move(value)); }
  AGProperties& bag() const { return *properties_; }

 protected:
  // A bag on `layout` with the stored defaults of `section`.
  DefinitionObject(const Ref<const PropertyLayout>& layout, const std::string& section);

 private:
  Ref<AGProperties> properties_;
};

}  // namespace bw
