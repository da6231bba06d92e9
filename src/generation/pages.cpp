// The page walk: which controls apply to what, and running each page's
// composed function into its output file.
#include "core/agp_vars.h"
#include "core/control_items.h"
#include "core/fields.h"
#include "core/generation_error.h"
#include "core/project.h"
#include "core/registry.h"
#include "core/status.h"
#include "core/tables.h"
#include "generation/generation.h"
#include "generation/output_files.h"
#include "persistence/project_reader.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/text.h"
#include "template/composition.h"
#include "template/controls.h"
#include "template/output_file.h"
#include "template/project_template.h"
#include "template/script_host.h"

namespace bw {
namespace {

bool listHas(const std::string& commaList, const std::string& entry) {
  for (const std::string& part : text::split(commaList, ","))
    if (part == entry) return true;
  return false;
}

bool typeInList(const std::string& type, std::string_view typeList) {
  for (const std::string& entry : text::split(typeList, ","))
    if (text::iequals(type, text::trimBlanks(entry))) return true;
  return false;
}

}  // namespace

bool IsGeneratedTable(AGPTable& table) {
  return table.TblGen() || !table.attrText("TblSysGenUnits").empty();
}

std::vector<AGPTable*> GeneratedTables(AGPDatabase& db) {
  std::vector<AGPTable*> out;
  for (DefinitionObject* item : db.Tables()->bySequence()) {
    AGPTable& table = static_cast<AGPTable&>(*item);
    if (IsGeneratedTable(table)) out.push_back(&table);
  }
  return out;
}

AGControlItem* Generation::projectItem(const std::string& id) {
  return project_.ControlItems()->Item(Variant(id)).get();
}

AGControlItem* Generation::tableItem(AGPTable& table, const std::string& id) {
  return table.ControlList()->Item(Variant(id)).get();
}

void Generation::makeCurrent(AGPTable* table, AGPField* field) {
  project_.setCurrentTable(refTo(table));
  const Ref<AGPDatabase> db = project_.DB();
  if (!db) return;
  AGPTables& tables = *db->Tables();
  if (!table) {
    tables.curName.clear();
    tables.curSeq = 0;
    return;
  }
  tables.SetItem(Variant(table->TblName()));
  if (field) table->Fields()->SetItem(Variant(field->Key()));
}

// A custom file without tag goes to the table's own output folder.
std::string Generation::TablePagePath(AGPTable& table, const AGPControl& ctrl, bool noCreate) {
  std::string folderId = ctrl.CtrlOFolderID, folder = ctrl.CtrlOFolder;
  if (ctrl.CtrlID == "custom" && ctrl.CtrlTagExt.empty()) {
    folderId.clear();
    folder = "~/" + table.attrText("OutputFolder");
  }
  return OutputPath(JoinOutputFolder(folderId, folder),
                    OutputFileName(ctrl, table.attrText("TblVar"), ""), noCreate);
}

std::string Generation::OtherPagePath(const AGPControl& ctrl, bool noCreate) {
  return OutputPath(JoinOutputFolder(ctrl.CtrlOFolderID, ctrl.CtrlOFolder),
                    OutputFileName(ctrl, "", ""), noCreate);
}

// A table switched off can still get the system pages named in
// TblSysGenUnits.
bool Generation::ControlAppliesToTable(AGPTable& table, const AGPControl& ctrl) {
  const bool gen = table.TblGen() || listHas(table.attrText("TblSysGenUnits"), ctrl.CtrlID);
  if (!gen) return false;
  const std::string tblType = table.attrText("TblType");
  const bool typeMatches =
      (ctrl.CtrlType == "table" && (tblType == "CUSTOMVIEW" || tblType == "VIEW" || tblType == "TABLE")) ||
      (ctrl.CtrlType == "report" && tblType == "REPORT");
  if (!typeMatches) return false;
  makeCurrent(&table);
  return template_.EvalCondition(ctrl.CtrlCond);
}

std::int16_t Generation::GeneratePages(bool check) {
  AGPVarsData& vars = AGPVars();
  EnsureProjectIds(project_);
  prepareTables();
  makeCurrent(nullptr);
  vars.ProgressTotal = CountGenerationItems();
  vars.ProgressDone = 0;

  const auto stopped = [&] { return !check && !vars.ProjErr.empty(); };
  std::int32_t total = CopyDatabase(check);
  if (stopped()) return 0;
  total += walkTables(check);
  if (stopped()) return 0;
  makeCurrent(nullptr);
  total += GenerateProjectConfig(check);
  if (stopped()) return 0;
  total += GenerateOtherPages(check, "other,simple,system,inline,codebehind");
  if (stopped()) return 0;
  total += CopyControlFiles(check);
  if (stopped()) return 0;
  total += GenerateOtherPages(check, "web.config");
  return vars.ProjErr.empty() ? static_cast<std::int16_t>(std::min<std::int32_t>(total, 32767)) : 0;
}

// Tables that cannot be generated as they stand are switched off, and the
// variable names of the rest made unique, before anything is counted.
void Generation::prepareTables() {
  AGPTables& tables = *project_.DB()->Tables();
  for (std::int32_t t = 0; t < tables.Count(); ++t) {
    AGPTable& table = tables.tableAt(t);
    const bool customReport = table.attrText("TblReportType") == "custom";
    if (customReport && !table.attrText("TblCustomError").empty()) table.setAttr("TblCustomError", Variant(""));
    if (!customReport && table.Fields()->Count() == 0 && table.TblGen()) table.setTblGen(false);
    if (!table.attrText("TblCustomError").empty()) {
      const std::string type = table.attrText("TblType");
      if (type == "REPORT" || type == "CUSTOMVIEW") {
        if (table.TblGen()) table.setTblGen(false);
      } else {
        table.setAttr("TblCustomError", Variant(""));
        table.setAttr("TblCustomSQL", Variant(""));
      }
    }
    if (IsGeneratedTable(table)) MakeVarsUnique(table);
  }
}

// Check mode only needs to know that some target exists, so it leaves at
// the first table that has one.
std::int16_t Generation::walkTables(bool check) {
  AGPVarsData& vars = AGPVars();
  std::int32_t total = 0;
  for (AGPTable* table : GeneratedTables(*project_.DB())) {
    makeCurrent(table);
    total += GenerateTablePages(*table, check);
    if (total > 0) break;
    if (!check && !vars.ProjErr.empty()) return 0;
    if (!table->TblGen()) continue;
    for (DefinitionObject* item : table->Fields()->bySequence()) {
      AGPField& field = static_cast<AGPField&>(*item);
      if (!field.attrBool("FldGenerate")) continue;
      makeCurrent(table, &field);
      total += GenerateFieldPages(field, check);
      if (!check && !vars.ProjErr.empty()) {
        failPage(": Generate Table " + table->TblName() + " Field " + field.Key() + " page error");
        return 0;
      }
    }
  }
  return static_cast<std::int16_t>(std::min<std::int32_t>(total, 32767));
}

// ProjErr reads from the newest context to the oldest.
void Generation::failPage(const std::string& context) {
  std::string& projErr = AGPVars().ProjErr;
  projErr = ProductMessage(context) + std::string(text::kCrLf) + projErr;
}

std::int16_t Generation::GenerateTablePages(AGPTable& table, bool check) {
  AGPVarsData& vars = AGPVars();
  bool somePageOn = false, gridOn = false;
  for (const Ref<AGPControl>& ctrl : controls_.walk()) {
    if (!ControlAppliesToTable(table, *ctrl)) continue;
    const AGControlItem* item = tableItem(table, ctrl->CtrlID);
    if (!item || !item->ItemGen) continue;
    somePageOn = true;
    if (ctrl->CtrlID == "grid") gridOn = true;
  }
  std::int16_t count = 0;
  for (const Ref<AGPControl>& ctrl : controls_.walk()) {
    if (!ControlAppliesToTable(table, *ctrl)) continue;
    ctrl->CtrlSkipHeaderFooter = false;
    AGControlItem* item = tableItem(table, ctrl->CtrlID);
    bool gen = true;
    if (item) {
      gen = item->ItemGen;
      ctrl->CtrlSkipHeaderFooter = item->ItemSkipHeaderFooter;
    } else if (ctrl->CtrlID == "info") {
      gen = somePageOn;
    } else if (ctrl->CtrlID == "gridcls") {
      gen = gridOn;
    }
    if (!gen) continue;
    vars.OutputFile = OutputFileName(*ctrl, table.attrText("TblVar"), "");
    const std::string path = TablePagePath(table, *ctrl, check);
    if (item) item->ItemDest = path;
    if (check) {
      if (ConfirmOverwrite(path, true, true)) ++count;
      continue;
    }
    Status().DispStatus("Generating " + vars.OutputFile + "...");
    if (Status().StatusIsCancelled()) CancelGeneration();
    GenerateTableFile(table, CachedScriptPath(*ctrl), path, *ctrl);
    if (!vars.ProjErr.empty()) {
      failPage(": Generate Table " + table.TblName() + " " + ctrl->CtrlID + " page error");
      break;
    }
  }
  return count;
}

std::int16_t Generation::GenerateFieldPages(AGPField& field, bool check) {
  AGPVarsData& vars = AGPVars();
  AGPTable& table = *project_.currentTable();
  if (!field.attrBool("FldGenerate")) return 0;
  bool somePageOn = false;
  AGControlItems& items = *table.ControlList();
  for (std::int32_t k = 1; k <= items.Count() && !somePageOn; ++k)
    somePageOn = items.Item(Variant(k))->ItemGen;
  if (!somePageOn) return 0;
  std::int16_t count = 0;
  for (const Ref<AGPControl>& ctrl : controls_.walk()) {
    if (ctrl->CtrlType != "field" || !template_.EvalCondition(ctrl->CtrlCond)) continue;
    vars.OutputFile = OutputFileName(*ctrl, table.attrText("TblVar"), field.FldParm());
    const std::string path =
        OutputPath(JoinOutputFolder(ctrl->CtrlOFolderID, ctrl->CtrlOFolder), vars.OutputFile, check);
    if (check) {
      if (ConfirmOverwrite(path, true, true)) ++count;
      continue;
    }
    Status().DispStatus("Generating " + vars.OutputFile + "...");
    GenerateFieldFile(field, CachedScriptPath(*ctrl), path, *ctrl);
    if (!vars.ProjErr.empty()) break;
  }
  return count;
}

std::int16_t Generation::GenerateOtherPages(bool check, std::string_view typeList) {
  AGPVarsData& vars = AGPVars();
  std::int16_t count = 0;
  for (const Ref<AGPControl>& ctrl : controls_.walk()) {
    const auto targetPath = [&](bool noCreate) { return OtherPagePath(*ctrl, noCreate); };
    // A report menu of an earlier related project does not stay behind.
    if (ctrl->CtrlID == "reportmenu" && project_.attrText("AppRelatedProject").empty()) {
      const std::string stale = targetPath(true);
      files::removeFile(stale);
    }
    if (!typeInList(ctrl->CtrlType, typeList)) continue;
    if (!template_.EvalCondition(ctrl->CtrlCond)) continue;
    ctrl->CtrlSkipHeaderFooter = false;
    AGControlItem* item = projectItem(ctrl->CtrlID);
    if (item) {
      if (!item->ItemGen) continue;
      ctrl->CtrlSkipHeaderFooter = item->ItemSkipHeaderFooter;
    }
    vars.OutputFile = OutputFileName(*ctrl, "", "");
    const std::string path = targetPath(check);
    if (check) {
      if (item) item->ItemDest = path;
      if (ConfirmOverwrite(path, true, true)) ++count;
      continue;
    }
    if (text::toLower(ctrl->CtrlType) != "system") {
      Status().DispStatus("Generating " + vars.OutputFile + "...");
      GenerateOtherFile(CachedScriptPath(*ctrl), path, *ctrl);
    }
    if (item) item->ItemDest = path;
    if (!vars.ProjErr.empty()) {
      failPage(": Generate " + ctrl->CtrlID + " page error");
      break;
    }
  }
  return count;
}

void Generation::GenerateTableFile(AGPTable& table, const std::string& scriptFile,
                                   const std::string& path, AGPControl& ctrl) {
  if (ConfirmOverwrite(path, ctrl.CtrlOverwrite, false)) {
    makeCurrent(&table);
    runComposedFunction(scriptFile, path, ctrl, 2, ".");
  }
  StepProgress();
}

void Generation::GenerateFieldFile(AGPField& field, const std::string& scriptFile,
                                   const std::string& path, AGPControl& ctrl) {
  if (!ConfirmOverwrite(path, ctrl.CtrlOverwrite, false)) return;
  makeCurrent(project_.currentTable().get(), &field);
  runComposedFunction(scriptFile, path, ctrl, 2, "");
}

void Generation::GenerateOtherFile(const std::string& scriptFile, const std::string& path,
                                   AGPControl& ctrl) {
  if (ConfirmOverwrite(path, ctrl.CtrlOverwrite, false))
    runComposedFunction(scriptFile, path, ctrl, 1, ".");
  StepProgress();
}

// Runs the control's function, made from its "tpl" file the first time, and
// writes what it gives. A script error leaves ProjErr set and no file.
void Generation::runComposedFunction(const std::string& scriptFile, const std::string& path,
                                     AGPControl& ctrl, std::int16_t initType,
                                     std::string_view missingEnd) {
  AGPVarsData& vars = AGPVars();
  if (!files::fileExists(scriptFile)) {
    vars.ProjErr = "File " + scriptFile + " not found. Generation aborted" + std::string(missingEnd);
    RaiseGenerationError();
  }
  const std::int64_t start = clock::tickCount();
  // Every table's page of a control runs the same composed function: its
  // file is read once per run.
  auto [cached, isNew] = composedScripts_.try_emplace(scriptFile);
  if (isNew) cached->second = files::readTextFile(scriptFile);
  const std::string& code = cached->second;
  vars.ScriptEngineTimeout = GeneralSetting("ScriptEngineTimeout").toLong().value_or(0);
  std::string result = GenerationScript()->BuildNewCode(template_.ControlFunctionId(ctrl), code,
                                                       initType, vars.ScriptEngineTimeout);
  const std::int64_t ran = clock::tickCount();
  vars.GenerationStats.scriptMs += ran - start;
  // A page whose script failed writes nothing: the file of the last good
  // run stays.
  if (!vars.ProjErr.empty()) return;
  result = ctrl.CtrlSpace ? TidyOutput(ctrl.CtrlOExt, result) : TrimLeadingBlankLines(result);
  MakeFolder(path.substr(0, path.find_last_of("\\/") + 1));
  WriteOutputFile(path, result);
  const std::int64_t end = clock::tickCount();
  vars.GenerationStats.outputMs += end - ran;
  ++vars.GenerationStats.pages;
  LogGeneratedFile(path, start, end);
}

}  // namespace bw
