// AGPField and AGPFields: the columns of a table or view.
//
// A field is its attribute bag (core/definition_attributes.h); every
// attribute is a typed property. It keeps no reference to its table, so the
// list's Add, Change and Delete take the table's name for the stores that
// refer to fields by table and field name (phrases, extensions).
#pragma once

#include <string>

#include "core/definition_list.h"

namespace bw {

class AGPField : public DefinitionObject {
 public:
  AGPField();

  // Key is FldName, read and written without effects.
  std::string Key() { return attrText("FldName"); }
  void setKey(const std::string& name) { setAttr("FldName", Variant(name)); }
  // FldVar without its "x_" prefix: the field's name as a parameter.
  std::string FldParm();

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPField"; }
};

class AGPFields : public DefinitionList {
 public:
  AGPFields();

  bool Add(const std::string& tblName, const std::string& name);
  // Renames a field and carries the new name into the extensions and the
  // phrases. FldName follows the new key.
  bool Change(const std::string& tblName, const std::string& oldName, const std::string& newName);
  bool Delete(const std::string& tblName, const Variant& index);
  bool FieldExist(const Variant& index) const { return exists(index); }

  // The bulk-load path (see DefinitionBulkLoad): appends a field with the
  // next sequence number, with no case-variant rename, no effects and no
  // dirty marks. Null for an empty or existing name.
  AGPField* appendLoaded(const std::string& name);

  AGPField* field(std::string_view name) const { return static_cast<AGPField*>(find(name)); }
  // Deletes every field, highest sequence number first, with the effects
  // of Delete: what a table does when it goes.
  void deleteAll(const std::string& tblName);
  using DefinitionList::rebuildVariableNames;

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPFields"; }

 protected:
  Ref<DefinitionObject> createItem() const override;
};

}  // namespace bw
