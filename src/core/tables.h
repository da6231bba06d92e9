// AGPTable and AGPTables: the tables, views, custom views and reports of a
// database.
//
// A table is its attribute bag (core/definition_attributes.h) plus its
// fields and its list of generation choices. Every attribute is a typed
// property; TblGen and TblCaption writes also reach the table's menu items.
// Renames and deletes of tables are carried into every store that refers
// to a table by name: extensions, phrases, menus and custom scripts.
#pragma once

#include <string>

#include "core/control_items.h"
#include "core/definition_list.h"
#include "core/fields.h"

namespace bw {

class AGPTable : public DefinitionObject {
 public:
  AGPTable();

  Ref<AGPFields> Fields() const { return fields_; }
  // The generation choices of this table's pages, made on first use.
  Ref<AGControlItems> ControlList();

  // Key is TblName, read and written without effects.
  std::string Key() { return TblName(); }
  void setKey(const std::string& name) { setAttr("TblName", Variant(name)); }
  std::string TblName() { return attrText("TblName"); }

  // Also clears TblGenList and shows or hides every menu item of the table.
  bool TblGen() { return attrBool("TblGen"); }
  void setTblGen(bool generate);
  // Also becomes the text of the table's first menu item.
  std::string TblCaption() { return attrText("TblCaption"); }
  void setTblCaption(const std::string& caption);

  // The starting values of a table whose TblName and TblType are set.
  void LoadTableDefault();

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPTable"; }

 private:
  Ref<AGPFields> fields_;
  Ref<AGControlItems> controlList_;
};

class AGPTables : public DefinitionList {
 public:
  AGPTables();

  bool Add(const std::string& name);
  // Renames a table, carrying the new name into extensions, phrases, the
  // table's menu item and custom scripts. TblName follows the new key.
  bool Change(const std::string& oldName, const std::string& newName);
  // Deletes a table with its fields, phrases, extension entries, table
  // scripts and first menu item.
  bool Delete(const std::string& index);
  bool TableExist(const Variant& index) const { return exists(index); }

  // The bulk-load path (see DefinitionBulkLoad): appends a table with the
  // next sequence number, with no case-variant rename, no effects and no
  // dirty marks. Null for an empty or existing name.
  AGPTable* appendLoaded(const std::string& name);

  AGPTable* table(std::string_view name) const { return static_cast<AGPTable*>(find(name)); }
  AGPTable& tableAt(std::int32_t offset) const { return static_cast<AGPTable&>(at(offset)); }

  // Rebuilds TblVar of every table and FldVar of the fields of loaded
  // tables: reserved words differ by program language.
  void rebuildVariableNames();

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPTables"; }

 protected:
  Ref<DefinitionObject> createItem() const override;
};

}  // namespace bw
