#include "persistence/project_writer.h"

#include <exception>
#include <string>
#include <vector>

#include "core/agp_vars.h"
#include "core/automation_error.h"
#include "core/databases.h"
#include "core/registry.h"
#include "core/tables.h"
#include "extensions/extensions.h"
#include "language/phrase_store.h"
#include "persistence/bag_xml.h"
#include "persistence/encoding.h"
#include "persistence/master_details.h"
#include "persistence/menus.h"
#include "persistence/project_files.h"
#include "platform/host.h"
#include "platform/text.h"
#include "platform/xml.h"
#include "platform/xml_text_writer.h"
#include "template/custom_scripts.h"

namespace bw {
namespace {

using Attributes = std::initializer_list<std::pair<const char*, std::string>>;

std::string flag(bool on) { return on ? "1" : "0"; }

// Each gap or double in TblSeq or FldSeq gets the first free number, and
// the user hears of it; the first item in collection order keeps a number.
class SequenceRepair {
 public:
  explicit SequenceRepair(std::int32_t count) : taken_(static_cast<std::size_t>(count) + 1) {}

  void check(DefinitionObject& item, std::string_view seqName, const std::string& what) {
    const std::int32_t seq = item.attrInteger(seqName);
    const std::int32_t upper = static_cast<std::int32_t>(taken_.size()) - 1;
    if (seq >= 1 && seq <= upper && !taken_[static_cast<std::size_t>(seq)]) {
      taken_[static_cast<std::size_t>(seq)] = true;
      return;
    }
    std::int32_t repaired = upper;
    for (std::int32_t k = 1; k <= upper; ++k)
      if (!taken_[static_cast<std::size_t>(k)]) {
        repaired = k;
        break;
      }
    taken_[static_cast<std::size_t>(repaired)] = true;
    item.setAttr(seqName, Variant(static_cast<std::int16_t>(repaired)));
    const AGPVarsData& vars = AGPVars();
    vars.host->showMessage(what + ". Reorder from " + std::to_string(seq) + " to " +
                               std::to_string(repaired) + ".",
                           vars.ProductName, MessageIcon::Warning);
  }

 private:
  std::vector<bool> taken_;
};

// The project file in the form of a raw XML document: every line end is a
// CR LF text node at its fixed place, written as the elements are.
class ProjectWriter {
 public:
  ProjectWriter(Project& project, std::string& text) : project_(project), out_(text) {}

  void write();

 private:
  void element(const char* name, Attributes attributes);  // an empty element
  void newline() { out_.text("\r\n"); }
  void writeDatabase(AGPDatabase& db);
  void writeExtensions();
  void writeMasterDetails();
  void writeCustomScripts();
  void writeMenus();
  void writePhrases();

  Project& project_;
  XmlTextWriter out_;
};

void ProjectWriter::element(const char* name, Attributes attributes) {
  out_.open(name);
  for (const auto& [attribute, value] : attributes) out_.attribute(attribute, value);
  out_.close();
}

void ProjectWriter::write() {
  out_.declaration();
  out_.open("Project");
  // The bag may hold Version and Product from the file read; they are
  // written in the bag's place, with this release's values.
  const AGProperties& bag = *project_.Properties();
  const std::pair<std::string_view, std::string> fixed[] = {{"Version", AppVersionText()},
                                                            {"Product", AGPVars().ProductName}};
  for (std::size_t slot = 0; slot < bag.size(); ++slot) {
    const AttributeDef& def = bag.defAt(slot);
    if (!def.fileSave || def.name == "ProjVar" || def.name == "SyncLog") continue;
    if (def.name == "Version" || def.name == "Product") continue;
    out_.attribute(def.name, BagFileText(def, bag.valueAt(slot)));
  }
  for (const auto& [name, value] : fixed) out_.attribute(name, value);
  newline();
  if (Ref<AGPDatabase> db = project_.DB()) writeDatabase(*db);
  writeExtensions();
  writeMasterDetails();
  writeCustomScripts();
  writeMenus();
  writePhrases();
  out_.close();
}

void ProjectWriter::writeDatabase(AGPDatabase& db) {
  out_.open("Database");
  WriteBagAttributes(db.bag(), out_);
  newline();
  for (DefinitionObject* table : db.Tables()->bySequence()) {
    out_.open("Table");
    WriteBagAttributes(table->bag(), out_);
    newline();
    for (DefinitionObject* field : static_cast<AGPTable*>(table)->Fields()->bySequence()) {
      out_.open("Field");
      WriteBagAttributes(field->bag(), out_);
      out_.close();
      newline();
    }
    out_.close();
    newline();
  }
  out_.close();
}

void ProjectWriter::writeExtensions() {
  const std::vector<Extension>& extensions = Extensions().extensions();
  if (extensions.empty()) return;
  newline();
  for (const Extension& extension : extensions) {
    if (extension.element)
      out_.markup(xml::outerXml(extension.element->document_element()));
    else
      element("Extension", {{"Name", extension.Name}});
    newline();
  }
}

void ProjectWriter::writeMasterDetails() {
  AGPMasterDetails& list = MasterDetails();
  if (list.Count() == 0) return;
  list.CheckSequence();
  newline();
  for (std::int16_t seq = 1; seq <= list.Count(); ++seq) {
    Ref<AGPMasterDetail> item = list.Seq(seq);
    if (!item) continue;
    out_.open("MasterDetail");
    for (const auto& [name, value] :
         Attributes{{"MasterTable", item->MasterTable()},
                    {"DetailTable", item->DetailTable()},
                    {"EnforceReferentialIntegrity", flag(item->EnforceReferentialIntegrity())},
                    {"CascadeUpdate", flag(item->CascadeUpdate())},
                    {"CascadeDelete", flag(item->CascadeDelete())}})
      out_.attribute(name, value);
    newline();
    for (std::int16_t k = 1; k <= item->FieldCount(); ++k) {
      element("Relation", {{"MasterField", item->MasterField(k)}, {"DetailField", item->DetailField(k)}});
      newline();
    }
    out_.close();
    newline();
  }
}

void ProjectWriter::writeCustomScripts() {
  const std::vector<AGPCustomScript*> scripts = CustomScripts().bySequence();
  if (scripts.empty()) return;
  newline();
  for (AGPCustomScript* script : scripts) {
    out_.open("CustomScript");
    WriteBagAttributes(*script->Properties(), out_);
    newline();
    out_.cdata(script->ScriptCode());
    newline();
    out_.close();
    newline();
  }
}

void ProjectWriter::writeMenus() {
  const std::vector<Ref<AGPMenu>>& items = Menus().items();
  if (items.empty()) return;
  newline();
  for (const Ref<AGPMenu>& m : items) {
    element("Menu", {{"MenuID", std::to_string(m->MenuId)},
                     {"MenuText", m->MenuText},
                     {"MenuParentID", std::to_string(m->MenuParentId)},
                     {"MenuGroup", flag(m->MenuGroup)},
                     {"MenuSource", m->MenuSource},
                     {"MenuExtUrl", m->MenuExtUrl},
                     {"MenuAnonymous", std::to_string(m->MenuAnonymous)},
                     {"MenuSecurity", m->MenuSecurity},
                     {"MenuUrl", m->MenuUrl},
                     {"MenuCustomUrl", flag(m->MenuCustomUrl)},
                     {"MenuLevel", std::to_string(m->MenuLevel)},
                     {"MenuShow", flag(m->MenuShow)},
                     {"MenuDisplayOrder", std::to_string(m->MenuDisplayOrder)}});
    newline();
  }
}

// Phrases of items that no longer exist are dropped here.
void ProjectWriter::writePhrases() {
  const AGPLanguage& language = Language();
  const auto write = [&](const char* name, Attributes attributes) {
    element(name, attributes);
    newline();
  };
  for (const AGProjectPhrase& p : language.projectPhrases())
    if (!p.Phrase.empty())
      write("ProjectPhrase", {{"LanguageId", p.LanguageId},
                              {"ProjectAttribute", p.ProjectAttribute},
                              {"Phrase", p.Phrase}});
  for (const AGMenuPhrase& p : language.menuPhrases()) {
    const auto id = Variant(p.MenuId).toLong();
    if (p.Phrase.empty() || !parseNumber(p.MenuId) || !id || !Menus().MenuHasID(*id)) continue;
    write("MenuPhrase", {{"LanguageId", p.LanguageId},
                         {"MenuId", p.MenuId},
                         {"MenuAttribute", p.MenuAttribute},
                         {"Phrase", p.Phrase}});
  }
  Ref<AGPDatabase> db = project_.DB();
  if (!db) return;
  AGPTables& tables = *db->Tables();
  for (const AGTablePhrase& p : language.tablePhrases())
    if (!p.Phrase.empty() && tables.table(p.TableName))
      write("TablePhrase", {{"LanguageId", p.LanguageId},
                            {"TableName", p.TableName},
                            {"TableAttribute", p.TableAttribute},
                            {"Phrase", p.Phrase}});
  for (const AGFieldPhrase& p : language.fieldPhrases()) {
    AGPTable* table = tables.table(p.TableName);
    if (p.Phrase.empty() || !table || !table->Fields()->field(p.FieldName)) continue;
    write("FieldPhrase", {{"LanguageId", p.LanguageId},
                          {"TableName", p.TableName},
                          {"FieldName", p.FieldName},
                          {"FieldAttribute", p.FieldAttribute},
                          {"Phrase", p.Phrase}});
  }
}

}  // namespace

bool CheckSequences(Project& project) {
  Ref<AGPDatabase> db = project.DB();
  if (!db) return true;
  AGPTables& tables = *db->Tables();
  SequenceRepair tableSeqs(tables.Count());
  for (std::int32_t t = 0; t < tables.Count(); ++t) {
    AGPTable& table = tables.tableAt(t);
    const std::string tableName = table.TblName();
    tableSeqs.check(table, "TblSeq", "Incorrect table sequence for table: " + tableName);
    AGPFields& fields = *table.Fields();
    SequenceRepair fieldSeqs(fields.Count());
    for (std::int32_t f = 0; f < fields.Count(); ++f) {
      DefinitionObject& field = fields.at(f);
      fieldSeqs.check(field, "FldSeq",
                      "Incorrect field sequence for table: " + tableName +
                          " / field: " + field.attrText("FldName"));
    }
  }
  return true;
}

void SaveProjectFile(Project& project, const std::string& projFile) {
  AGPVarsData& vars = AGPVars();
  vars.ProjErr.clear();
  try {
    CheckSequences(project);
    GetSystemCharset();
    std::string text(kUtf8ByteOrderMark);
    ProjectWriter(project, text).write();
    std::int16_t maxCount =
        ConvertSetting(GeneralSetting("MaxProjectBackupCount"),
                       DataKind::Integer)
            .toInteger()
            .value_or(0);
    if (maxCount < 1) maxCount = 10;
    BackupProjectFile(projFile, vars.BackupFolder, maxCount);
    std::string error;
    if (!WriteProjectText(projFile, text, error)) throw std::runtime_error(error);
    vars.Dirty = false;
    vars.ProjectFile = projFile;
  } catch (const AutomationError& e) {
    if (vars.ProjErr.empty()) vars.ProjErr = e.description();
  } catch (const std::exception& e) {
    if (vars.ProjErr.empty()) vars.ProjErr = e.what();
  }
}

}  // namespace bw
