// AGP::Save: the project, its definition model and the stores into one XML
// document, written over the project file after the old one became its
// newest backup.
#include <pugixml.hpp>

#include <exception>
#include <string>
#include <vector>

#include "core/agp.h"
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
#include "template/custom_scripts.h"

namespace bw {
namespace {

constexpr const char* kCrLf = "\r\n";

void newline(pugi::xml_node parent) { parent.append_child(pugi::node_pcdata).set_value(kCrLf); }

void setAttributes(pugi::xml_node element,
                   std::initializer_list<std::pair<const char*, std::string>> attributes) {
  for (const auto& [name, value] : attributes) element.append_attribute(name) = value.c_str();
}

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

class ProjectWriter {
 public:
  explicit ProjectWriter(AGP& project) : project_(project) {}

  pugi::xml_document build();

 private:
  void writeDatabase(pugi::xml_node root, AGPDatabase& db);
  void writeExtensions(pugi::xml_node root);
  void writeMasterDetails(pugi::xml_node root);
  void writeCustomScripts(pugi::xml_node root);
  void writeMenus(pugi::xml_node root);
  void writePhrases(pugi::xml_node root);

  AGP& project_;
};

pugi::xml_document ProjectWriter::build() {
  pugi::xml_document doc;
  pugi::xml_node declaration = doc.append_child(pugi::node_declaration);
  setAttributes(declaration, {{"version", "1.0"}, {"encoding", "UTF-8"}, {"standalone", "yes"}});
  pugi::xml_node root = doc.append_child("Project");
  WriteBagToElement(*project_.Properties(), root);
  root.remove_attribute("ProjVar");
  root.remove_attribute("SyncLog");
  for (const auto& [name, value] : {std::pair<const char*, std::string>{"Version", AppVersionText()},
                                    {"Product", AGPVars().ProductName}}) {
    pugi::xml_attribute a = root.attribute(name);
    (a ? a : root.append_attribute(name)) = value.c_str();
  }
  newline(root);
  if (Ref<AGPDatabase> db = project_.DB()) writeDatabase(root, *db);
  writeExtensions(root);
  writeMasterDetails(root);
  writeCustomScripts(root);
  writeMenus(root);
  writePhrases(root);
  return doc;
}

void ProjectWriter::writeDatabase(pugi::xml_node root, AGPDatabase& db) {
  pugi::xml_node database = root.append_child("Database");
  WriteBagToElement(db.bag(), database);
  newline(database);
  for (DefinitionObject* table : db.Tables()->bySequence()) {
    pugi::xml_node tableElement = database.append_child("Table");
    WriteBagToElement(table->bag(), tableElement);
    tableElement.remove_attribute("TblSeq");
    newline(database);
    newline(tableElement);
    for (DefinitionObject* field : static_cast<AGPTable*>(table)->Fields()->bySequence()) {
      pugi::xml_node fieldElement = tableElement.append_child("Field");
      WriteBagToElement(field->bag(), fieldElement);
      fieldElement.remove_attribute("FldSeq");
      newline(tableElement);
    }
  }
}

void ProjectWriter::writeExtensions(pugi::xml_node root) {
  const std::vector<Extension>& extensions = Extensions().extensions();
  if (extensions.empty()) return;
  newline(root);
  for (const Extension& extension : extensions) {
    if (extension.element)
      root.append_copy(extension.element->document_element());
    else
      root.append_child("Extension").append_attribute("Name") = extension.Name.c_str();
    newline(root);
  }
}

void ProjectWriter::writeMasterDetails(pugi::xml_node root) {
  AGPMasterDetails& list = MasterDetails();
  if (list.Count() == 0) return;
  list.CheckSequence();
  newline(root);
  for (std::int16_t seq = 1; seq <= list.Count(); ++seq) {
    Ref<AGPMasterDetail> item = list.Seq(seq);
    if (!item) continue;
    pugi::xml_node element = root.append_child("MasterDetail");
    setAttributes(element, {{"MasterTable", item->MasterTable()},
                            {"DetailTable", item->DetailTable()},
                            {"EnforceReferentialIntegrity", flag(item->EnforceReferentialIntegrity())},
                            {"CascadeUpdate", flag(item->CascadeUpdate())},
                            {"CascadeDelete", flag(item->CascadeDelete())}});
    newline(root);
    newline(element);
    for (std::int16_t k = 1; k <= item->FieldCount(); ++k) {
      setAttributes(element.append_child("Relation"),
                    {{"MasterField", item->MasterField(k)}, {"DetailField", item->DetailField(k)}});
      newline(element);
    }
  }
}

void ProjectWriter::writeCustomScripts(pugi::xml_node root) {
  const std::vector<CustomScript>& scripts = CustomScripts().scripts();
  if (scripts.empty()) return;
  newline(root);
  for (const CustomScript& script : scripts) {
    pugi::xml_node element = root.append_child("CustomScript");
    setAttributes(element, {{"ScriptType", script.ScriptType},
                            {"ScriptCodeType", script.ScriptCodeType},
                            {"ScriptName", script.ScriptName},
                            {"ScriptLanguage", script.ScriptLanguage},
                            {"ScriptCtrlID", script.ScriptCtrlID},
                            {"ScriptL1Key", script.ScriptL1Key},
                            {"ScriptL2Key", script.ScriptL2Key}});
    newline(root);
    newline(element);
    element.append_child(pugi::node_cdata).set_value(script.ScriptCode.c_str());
    newline(element);
  }
}

void ProjectWriter::writeMenus(pugi::xml_node root) {
  const std::vector<Ref<AGPMenu>>& items = Menus().items();
  if (items.empty()) return;
  newline(root);
  for (const Ref<AGPMenu>& m : items) {
    setAttributes(root.append_child("Menu"),
                  {{"MenuID", std::to_string(m->MenuId)},
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
    newline(root);
  }
}

// Phrases of items that no longer exist are dropped here.
void ProjectWriter::writePhrases(pugi::xml_node root) {
  const AGPLanguage& language = Language();
  const auto write = [&](const char* element,
                         std::initializer_list<std::pair<const char*, std::string>> attributes) {
    setAttributes(root.append_child(element), attributes);
    newline(root);
  };
  for (const ProjectPhrase& p : language.projectPhrases())
    if (!p.Phrase.empty())
      write("ProjectPhrase", {{"LanguageId", p.LanguageId},
                              {"ProjectAttribute", p.ProjectAttribute},
                              {"Phrase", p.Phrase}});
  for (const MenuPhrase& p : language.menuPhrases()) {
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
  for (const TablePhrase& p : language.tablePhrases())
    if (!p.Phrase.empty() && tables.table(p.TableName))
      write("TablePhrase", {{"LanguageId", p.LanguageId},
                            {"TableName", p.TableName},
                            {"TableAttribute", p.TableAttribute},
                            {"Phrase", p.Phrase}});
  for (const FieldPhrase& p : language.fieldPhrases()) {
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

bool AGP::CheckSequences() {
  Ref<AGPDatabase> db = DB();
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

void AGP::Save(const std::string& projFile) {
  AGPVarsData& vars = AGPVars();
  vars.ProjErr.clear();
  try {
    CheckSequences();
    GetSystemCharset();
    const pugi::xml_document doc = ProjectWriter(*this).build();
    std::int16_t maxCount =
        ConvertSetting(ReadSetting("HKCU", vars.RegGeneral, "MaxProjectBackupCount"),
                       DataKind::Integer)
            .toInteger()
            .value_or(0);
    if (maxCount < 1) maxCount = 10;
    BackupProjectFile(projFile, vars.BackupFolder, maxCount);
    std::string error;
    if (!SaveDom(projFile, doc, true, error)) throw std::runtime_error(error);
    vars.Dirty = false;
    vars.ProjectFile = projFile;
  } catch (const AutomationError& e) {
    if (vars.ProjErr.empty()) vars.ProjErr = e.description();
  } catch (const std::exception& e) {
    if (vars.ProjErr.empty()) vars.ProjErr = e.what();
  }
}

}  // namespace bw
