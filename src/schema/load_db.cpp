#include "schema/load_db.h"

#include <string>

#include "core/agp_vars.h"
#include "core/definition_object.h"
#include "core/keywords.h"
#include "core/registry.h"
#include "core/status.h"
#include "platform/text.h"
#include "schema/ado_loader.h"

namespace bw {
namespace {

// The key of a new database, from the type word; "" with ProjErr set when
// the request cannot name one.
std::string databaseKey(const std::string& upperType, const std::string& dbName, const std::string& phyPath,
                        const std::string& connStr) {
  if (upperType == "ACCESS") {
    if (phyPath.empty()) {
      AGPVars().ProjErr = "invalid database path!";
      return "";
    }
    return phyPath.substr(phyPath.find_last_of('\\') + 1);
  }
  if (upperType == "ODBC") return dbName.empty() ? "ODBC" : dbName;
  // The text stands only if the load then fails.
  if (connStr.empty()) AGPVars().ProjErr = "invalid connection string specified!";
  return dbName.empty() ? "DB" : dbName;
}

// The project settings the table and field loaders start from.
void copyLoadSettings(Project& project) {
  AGPVarsData& vars = AGPVars();
  vars.SQLQuote = project.attr("SQLQuote");
  vars.DefaultDateFormat = project.typedAttr("DefaultDateFormat").toInteger().value_or(0);
  const std::pair<Variant AGPVarsData::*, const char*> copies[] = {
      {&AGPVarsData::DynamicLoadDB, "DynamicLoadDB"},   {&AGPVarsData::RptIndent, "RptIndent"},
      {&AGPVarsData::RecPerPage, "RecPerPage"},         {&AGPVarsData::RecPerPageList, "RecPerPageList"},
      {&AGPVarsData::ExportHtml, "ExportHtml"},         {&AGPVarsData::ExportWord, "ExportWord"},
      {&AGPVarsData::ExportExcel, "ExportExcel"},       {&AGPVarsData::ExportXml, "ExportXml"},
      {&AGPVarsData::ExportCsv, "ExportCsv"},           {&AGPVarsData::RecPerRow, "RecPerRow"},
      {&AGPVarsData::MultiDelete, "MultiDelete"},       {&AGPVarsData::SortType, "SortType"},
      {&AGPVarsData::PagerStyle, "PagerStyle"},         {&AGPVarsData::TopPageLink, "TopPageLink"},
      {&AGPVarsData::BottomPageLink, "BottomPageLink"}, {&AGPVarsData::ViewExport, "ViewExport"},
      {&AGPVarsData::ListExport, "ListExport"},         {&AGPVarsData::LinkOnLeft, "LinkOnLeft"},
      {&AGPVarsData::InlineDelete, "InlineDelete"},     {&AGPVarsData::DetailViewPaging, "DetailViewPaging"},
      {&AGPVarsData::RepeatColumns, "RepeatColumns"}};
  for (const auto& [member, name] : copies) vars.*member = project.typedAttr(name);
}

void loadKeywords(Project& project) {
  AGPVars().ProgramLanguage = project.ProgramLanguage();
  Keywords().Load(ReadSetting(Variant("HKCU"), Variant(AGPVars().RegGeneral), Variant("Keyword")));
}

// Oracle is read through the database component unless the user asked for
// OLE DB; that road shows no status of its own.
bool takesComponentRoad(const std::string& type) {
  return text::toLower(type) == "oracle" &&
         !ReadSetting(Variant("HKCU"), Variant(AGPVars().RegGeneral), Variant("UseOracleOledb"))
              .toBoolean()
              .value_or(false);
}

// The roads that need a client this build does not have fail with a reason
// instead of pretending to read.
std::int16_t unavailableRoad(const std::string& what) {
  AGPVars().ProjErr = AGPVars().ProductName + ": " + what + " is not available in this build";
  return schema::kLoadFailed;
}

std::int16_t loadThroughRoad(AGPDatabase& db, const schema::ConnectionRequest& request, const std::string& tableName,
                             bool componentRoad) {
  if (text::toUpper(request.dbType) == "ACCESS") return unavailableRoad("Reading Access databases");
  if (componentRoad) return unavailableRoad("Oracle client library");
  return schema::LoadADODB(db, request, tableName);
}

}  // namespace

// sPath and bDBUseServerMapPath serve the Access road, which this build lacks.
void LoadDB(Project& project, const Variant& sDbName, const Variant& sDbType,
            [[maybe_unused]] const Variant& sPath, const Variant& sPhyPath,
            [[maybe_unused]] const Variant& bDBUseServerMapPath, const Variant& sUID,
            const Variant& sPwd, const Variant& sConnStr, const Variant& sSchema) {
  AGPVarsData& vars = AGPVars();
  vars.StatusTitle = vars.ProductName + " - Loading Database...";
  if (project.DB()) {
    vars.ProjErr = "database already loaded!";
    return;
  }
  const std::string type = sDbType.toText();
  const std::string key = databaseKey(text::toUpper(type), sDbName.toText(), sPhyPath.toText(), sConnStr.toText());
  if (key.empty()) return;
  project.setCurDBName(key);
  loadKeywords(project);
  const bool componentRoad = takesComponentRoad(type);
  if (!componentRoad) Status().ShowStatus(project.hwnd(), std::string(vars.StatusTitle.size(), ' ') + vars.StatusTitle);
  const std::string pendingError = vars.ProjErr;
  vars.ProjErr = "";
  Ref<AGPDatabase> db = project.addDatabase(key);
  vars.ProjErr = pendingError;
  copyLoadSettings(project);

  std::int16_t status;
  {
    DefinitionBulkLoad bulk;  // defaults read once for thousands of tables and fields
    status = loadThroughRoad(*db, {type, sDbName.toText(), sUID.toText(), sPwd.toText(), sConnStr.toText(),
                                   sSchema.toText()},
                             "", componentRoad);
  }
  if (!componentRoad) Status().CloseStatus();
  if (status != schema::kLoadOk) {
    project.databases()->Delete(Variant(key));
    project.setCurDBName("");
    if (vars.ProjErr.empty()) vars.ProjErr = "Load Database failed!";
    return;
  }
  vars.ProjErr = "";
  vars.Dirty = true;  // a new database: the bulk load kept the flag as it was
}

void LoadTable(Project& project, const std::string& sTableName) {
  AGPVarsData& vars = AGPVars();
  Ref<AGPDatabase> db = project.DB();
  if (!db) {
    vars.ProjErr = vars.ProductName + ": Database not loaded!";
    return;
  }
  AGPTables& tables = *db->Tables();
  if (AGPTable* table = tables.table(sTableName)) {
    if (table->attrBool("TblLoaded")) {
      vars.ProjErr = vars.ProductName + ": Table " + sTableName + " already loaded!";
      return;
    }
  } else if (!tables.Add(sTableName)) {
    vars.ProjErr = vars.ProductName + ": Table " + sTableName + " cannot be added!";
    return;
  } else {
    AGPTable& added = *tables.table(sTableName);
    added.setAttr("TblGen", Variant(false));
    added.setAttr("TblLoaded", Variant(false));
  }
  loadKeywords(project);
  copyLoadSettings(project);
  const std::string type = db->attrText("DBType");
  const bool componentRoad = takesComponentRoad(type);
  const std::int16_t status = loadThroughRoad(
      *db, {type, db->attrText("DBName"), db->attrText("DBUID"), db->attrText("DBPwd"), db->attrText("DBConnstr"),
            db->attrText("DBSchema")},
      sTableName, componentRoad);
  if (status != schema::kLoadOk) {
    if (vars.ProjErr.empty()) vars.ProjErr = "Load Database failed!";
    return;
  }
  vars.ProjErr = "";
}

}  // namespace bw
