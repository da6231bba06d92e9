// AGPDatabase and AGPDatabases: the database of a project.
//
// A database is its attribute bag (core/definition_attributes.h) and its
// tables. The list holds at most one; AGP.DB is the current one. Deleting a
// database from the list unloads it: every table is deleted with all its
// effects, so the stores lose the entries of its tables too.
#pragma once

#include <cstdint>
#include <string>

#include "core/definition_object.h"
#include "core/tables.h"

namespace bw {

class AGPDatabase : public DefinitionObject {
 public:
  AGPDatabase();

  Ref<AGPTables> Tables() const { return tables_; }

  // Key is DBName, read and written without effects.
  std::string Key() { return DBName(); }
  void setKey(const std::string& name) { setAttr("DBName", Variant(name)); }
  // Also sets DBVar (and AGPVars().DBVar) from the part before the first ".".
  std::string DBName() { return attrText("DBName"); }
  void setDBName(const std::string& name);
  // These also set their AGPVars() copies.
  std::string DBVar() { return attrText("DBVar"); }
  void setDBVar(const std::string& var);
  std::string SecDefault() { return attrText("SecDefault"); }
  void setSecDefault(const std::string& security);

  // Deletes every table, highest TblSeq first, showing progress for more
  // than two; then clears AGPVars().SecDefault.
  void unload();

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPDatabase"; }

 private:
  Ref<AGPTables> tables_;
};

class AGPDatabases : public Dispatch {
 public:
  AGPDatabases();

  // Cursors on the database last added or fetched.
  std::string curName;
  std::string curSeq;

  // Refused, with "support 1 db only!" in ProjErr, when there is one.
  void Add(const std::string& name);
  std::int32_t Count() const { return items_->count(); }
  // By key or position; unloads the database.
  void Delete(const Variant& index);
  // By key or position; none when there is no such database.
  Ref<AGPDatabase> Item(const Variant& index);

  AGPDatabase* database(std::string_view name) const;

  Ref<EnumVariant> newEnum() override { return items_->newEnum(); }
  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPDatabases"; }

 private:
  const Variant* find(const Variant& index) const;

  Ref<CSuperCollection> items_;
};

// 100 * done / total, rounded; a total of 0 counts as 1 and done is capped
// at total.
std::int16_t ProgressPercent(std::int32_t done, std::int32_t total);

}  // namespace bw
