#include "core/databases.h"

#include <algorithm>
#include <cmath>

#include "core/agp_vars.h"
#include "core/attribute_members.h"
#include "core/definition_attributes.h"
#include "core/names.h"
#include "core/status.h"

namespace bw {

std::int16_t ProgressPercent(std::int32_t done, std::int32_t total) {
  total = std::max(total, 1);
  done = std::min(done, total);
  return static_cast<std::int16_t>(std::lround(100.0 * done / total));
}

// ---------------------------------------------------------------------------
// AGPDatabase

AGPDatabase::AGPDatabase()
    : DefinitionObject(DatabaseLayout(), AGPVars().RegDatabase), tables_(make<AGPTables>()) {}

void AGPDatabase::setDBName(const std::string& name) {
  setAttr("DBName", Variant(name));
  setDBVar(MakeVarName(name.substr(0, name.find('.')), ""));
}

void AGPDatabase::setDBVar(const std::string& var) {
  setAttr("DBVar", Variant(var));
  AGPVars().DBVar = var;
}

void AGPDatabase::setSecDefault(const std::string& security) {
  setAttr("SecDefault", Variant(security));
  AGPVars().SecDefault = security;
}

void AGPDatabase::unload() {
  AGPVarsData& vars = AGPVars();
  const std::int32_t total = tables_->Count();
  vars.ProgressTotal = total;
  vars.ProgressDone = total;
  const bool showProgress = total > 2;
  if (showProgress) Status().ShowStatus(0, vars.ProductName + " - Unloading Database...");
  std::vector<DefinitionObject*> tables = tables_->bySequence();
  for (auto it = tables.rbegin(); it != tables.rend(); ++it) {
    // Keep the name: the table goes with the delete.
    const std::string name = (*it)->attrText("TblName");
    Status().DispStatus("Unloading " + (*it)->attrText("TblType") + " " + name + "...");
    tables_->Delete(name);
    vars.ProgressDone -= 1;
    Status().SetStatus(Variant(ProgressPercent(vars.ProgressDone, vars.ProgressTotal)));
  }
  if (showProgress) Status().CloseStatus();
  vars.SecDefault = "";
}

const MemberTable& AGPDatabase::members() const {
  static const MemberTable table = [] {
    using D = AGPDatabase;
    MemberTable t{
        property<&D::Properties>("Properties"),
        method<&D::GetV>("GetV"),
        method<&D::SetV>("SetV"),
        property<&D::Tables>("Tables"),
        property<&D::Key, &D::setKey>("Key"),
        property<&D::DBName, &D::setDBName>("DBName"),
        property<&D::DBVar, &D::setDBVar>("DBVar"),
        property<&D::SecDefault, &D::setSecDefault>("SecDefault"),
    };
    // What describes the connection is read from it, not set by scripts.
    AddAttributeMembers<D>(t, *DatabaseLayout(),
                           {"DBADOVer", "DBDBMSName", "DBOLEDBVer", "DBProviderName", "DBProviderVer"},
                           {"DBDatabaseNames"});
    return t;
  }();
  return table;
}

// ---------------------------------------------------------------------------
// AGPDatabases

AGPDatabases::AGPDatabases() : items_(make<CSuperCollection>()) { items_->setCompareMode(1); }

void AGPDatabases::Add(const std::string& name) {
  if (Count() > 0) {
    AGPVars().ProjErr = "support 1 db only!";
    return;
  }
  AGPVars().ProjErr = "";
  auto db = make<AGPDatabase>();
  db->setDBName(name);
  items_->add(Variant(db), name);
  curName = name;
  curSeq = std::to_string(Count());
}

const Variant* AGPDatabases::find(const Variant& index) const {
  if (index.isNumeric()) {
    const std::int32_t position = index.toLong().value_or(0);
    return position >= 1 && position <= Count() ? &items_->itemAt(position) : nullptr;
  }
  return items_->find(index.toText());
}

void AGPDatabases::Delete(const Variant& index) {
  const Variant* found = find(index);
  if (!found) return;
  Ref<AGPDatabase> db(static_cast<AGPDatabase*>(found->object()));
  db->unload();
  items_->remove(index.isNumeric() ? index : Variant(index.toText()));
}

Ref<AGPDatabase> AGPDatabases::Item(const Variant& index) {
  const Variant* found = find(index);
  if (!found) return {};
  Ref<AGPDatabase> db(static_cast<AGPDatabase*>(found->object()));
  curName = db->DBName();
  return db;
}

AGPDatabase* AGPDatabases::database(std::string_view name) const {
  const Variant* found = items_->find(name);
  return found ? static_cast<AGPDatabase*>(found->object()) : nullptr;
}

const MemberTable& AGPDatabases::members() const {
  using D = AGPDatabases;
  static const MemberTable table{
      field<&D::curName>("curName"),
      field<&D::curSeq>("curSeq"),
      method<&D::Add>("Add"),
      method<&D::Count>("Count"),
      method<&D::Delete>("Delete"),
      asDefault(property<&D::Item>("Item")),
      method<&D::newEnum>("NewEnum_db"),
  };
  return table;
}

}  // namespace bw
