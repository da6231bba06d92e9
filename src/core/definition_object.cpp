#include "core/definition_object.h"

#include "core/agp_vars.h"
#include "core/conversions.h"
#include "core/registry.h"

namespace bw {

// ---------------------------------------------------------------------------
// Stored defaults

StoredDefaults StoredDefaults::read(const PropertyLayout& layout, const std::string& section) {
  StoredDefaults defaults;
  for (std::size_t slot = 0; slot < layout.size(); ++slot) {
    const AttributeDef& def = layout.def(slot);
    if (!def.regSave) continue;
    Variant value = ConvertSetting(ReadSetting("HKCU", section, def.name), layout.kind(slot));
    if (!value.isEmpty()) defaults.values_.emplace_back(static_cast<std::uint32_t>(slot), std::move(value));
  }
  return defaults;
}

void StoredDefaults::applyTo(AGProperties& bag) const {
  for (const auto& [slot, value] : values_) bag.assignAt(slot, value);
}

const StoredDefaults& StoredDefaultsCache::get(const PropertyLayout& layout, const std::string& section) {
  for (const auto& [name, defaults] : bySection_)
    if (name == section) return defaults;
  bySection_.emplace_back(section, StoredDefaults::read(layout, section));
  return bySection_.back().second;
}

DefinitionBulkLoad::DefinitionBulkLoad() : dirtyBefore_(AGPVars().Dirty) {
  std::shared_ptr<StoredDefaultsCache>& cache = AGPVars().BulkDefaults;
  if (cache) return;
  cache = std::make_shared<StoredDefaultsCache>();
  ownsCache_ = true;
}

DefinitionBulkLoad::~DefinitionBulkLoad() {
  if (ownsCache_) AGPVars().BulkDefaults.reset();
  AGPVars().Dirty = dirtyBefore_;
}

// ---------------------------------------------------------------------------
// DefinitionObject

DefinitionObject::DefinitionObject(const Ref<const PropertyLayout>& layout, const std::string& section)
    : properties_(make<AGProperties>(layout)) {
  if (StoredDefaultsCache* cache = AGPVars().BulkDefaults.get())
    cache->get(*layout, section).applyTo(*properties_);
  else
    StoredDefaults::read(*layout, section).applyTo(*properties_);
}

Variant DefinitionObject::SetV(const std::string& name, const std::string& value) {
  if (auto slot = properties_->find(name))
    properties_->setValueAt(*slot, ConvertSetting(Variant(value), properties_->kindAt(*slot)));
  else
    setAttr(name, Variant(value));
  return Variant();
}

Variant DefinitionObject::typedAttr(std::string_view name) {
  const std::size_t slot = properties_->ensure(name);
  return CoerceOrZero(properties_->valueAt(slot), properties_->kindAt(slot));
}

}  // namespace bw
