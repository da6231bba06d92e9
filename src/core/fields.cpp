#include "core/fields.h"

#include "core/agp_vars.h"
#include "core/attribute_members.h"
#include "core/definition_attributes.h"
#include "core/definition_listener.h"

namespace bw {

// ---------------------------------------------------------------------------
// AGPField

AGPField::AGPField() : DefinitionObject(FieldLayout(), AGPVars().RegField) {}

std::string AGPField::FldParm() {
  const std::string var = attrText("FldVar");
  return var.size() > 2 ? var.substr(2) : "";
}

const MemberTable& AGPField::members() const {
  static const MemberTable table = [] {
    using F = AGPField;
    MemberTable t{
        property<&F::Properties>("Properties"),
        method<&F::GetV>("GetV"),
        method<&F::SetV>("SetV"),
        property<&F::Key, &F::setKey>("Key"),
        property<&F::FldParm>("FldParm"),
    };
    AddAttributeMembers<F>(t, *FieldLayout());
    return t;
  }();
  return table;
}

// ---------------------------------------------------------------------------
// AGPFields

namespace {
constexpr ListAttributes kFieldNames{"FldName", "FldSeq", "FldVar", "x_"};
}

AGPFields::AGPFields() : DefinitionList(kFieldNames) {}

Ref<DefinitionObject> AGPFields::createItem() const { return make<AGPField>(); }

bool AGPFields::Add(const std::string& tblName, const std::string& name) {
  if (name.empty() || FieldExist(Variant(name))) return false;
  if (auto existing = differentlyCasedName(name)) return Change(tblName, *existing, name);
  appendNew(name, false);
  return true;
}

AGPField* AGPFields::appendLoaded(const std::string& name) {
  if (name.empty() || FieldExist(Variant(name))) return nullptr;
  return static_cast<AGPField*>(&appendNew(name, true));
}

bool AGPFields::Change(const std::string& tblName, const std::string& oldName, const std::string& newName) {
  switch (rekey(oldName, newName)) {
    case Rename::Refused:
      return false;
    case Rename::SameName:
      return true;
    case Rename::Renamed:
      break;
  }
  AGPVars().definitionListener->fieldRenamed(tblName, oldName, newName);
  return true;
}

bool AGPFields::Delete(const std::string& tblName, const Variant& index) {
  const std::string key = index.toText();
  DefinitionObject* field = itemToDelete(key);
  if (!field) return false;
  const std::string name = nameOf(*field);
  closeSequenceGap(*field);
  AGPVars().definitionListener->fieldDeleted(tblName, name);
  remove(key);
  return true;
}

void AGPFields::deleteAll(const std::string& tblName) {
  std::vector<DefinitionObject*> fields = bySequence();
  for (auto it = fields.rbegin(); it != fields.rend(); ++it) Delete(tblName, Variant(nameOf(**it)));
}

const MemberTable& AGPFields::members() const {
  using F = AGPFields;
  static const MemberTable table{
      {
          method<&F::Add>("Add"),
          method<&F::Change>("Change"),
          method<&F::Delete>("Delete"),
          method<&F::FieldExist>("FieldExist"),
          method<&F::newEnum>("NewEnum_fld"),
      },
      listMembers()};
  return table;
}

}  // namespace bw
