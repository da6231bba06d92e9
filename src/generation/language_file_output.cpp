// A language file of the project's site: the file of the language folder,
// copied into the site's language folder with the project's own texts.
//
// The source's global texts pass through with their ids in lower case and
// the folder tokens of their image addresses expanded. Any `project`
// section it holds is thrown away and rebuilt from the project, the menu,
// the tables and fields of the current database and the phrase store:
//
//   <language id="de" date="2014/3/7">
//     <global>...</global>
//     <project>
//       <phrase id="bodytitle" value="..."/>            project attributes
//       <menu id="3"><phrase id="menutext" .../></menu>  each menu item
//       <table id="orders">                              each table, by TblVar
//         <phrase id="tblcaption" .../>
//         <field id="orderid"><phrase .../></field>      each field, by FldParm
//       </table>
//     </project>
//   </language>
//
// Each element made inside `project`, and `project` itself, is followed by
// a CR LF, so that the file reads a line per element.
#include <ctime>
#include <functional>
#include <optional>
#include <pugixml.hpp>

#include "core/control_items.h"
#include "core/databases.h"
#include "core/fields.h"
#include "core/project.h"
#include "core/registry.h"
#include "core/status.h"
#include "core/tables.h"
#include "generation/generation.h"
#include "language/language_file.h"
#include "language/phrase_store.h"
#include "persistence/menus.h"
#include "persistence/project_files.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/xml.h"
#include "template/output_file.h"

namespace bw {
namespace {

// The day without padding, such as 2014/3/7.
std::string unpaddedDate() {
  const std::tm local = clock::localNow();
  return std::to_string(local.tm_year + 1900) + "/" + std::to_string(local.tm_mon + 1) + "/" +
         std::to_string(local.tm_mday);
}

// The value of a bag's attribute, if the bag has it; nothing is created.
std::optional<std::string> attributeOf(AGProperties& bag, std::string_view name) {
  const auto slot = bag.find(name);
  if (!slot) return std::nullopt;
  return bag.valueAt(*slot).toText();
}

// The global texts are the product's; only their ids and image addresses
// are normalised.
void normaliseGlobals(pugi::xml_document& doc, const FolderLookup& folderOf) {
  const auto lowerId = [](pugi::xml_node node) {
    if (pugi::xml_attribute id = node.attribute("id")) id = text::toLower(id.value()).c_str();
  };
  for (const pugi::xpath_node& locale : doc.select_nodes("//global/locale")) lowerId(locale.node());
  for (const pugi::xpath_node& found : doc.select_nodes("//global/phrase")) {
    const pugi::xml_node phrase = found.node();
    lowerId(phrase);
    pugi::xml_attribute image = phrase.attribute("imageurl");
    if (image && *image.value()) image = ExpandFolderTokens(image.value(), folderOf).c_str();
  }
}

// Removed from the last to the first, so that a section inside another one
// goes before the one that holds it. A root element named `project` stays:
// the new section needs a root to go into.
void removeProjectSections(pugi::xml_document& doc) {
  const pugi::xpath_node_set sections = doc.select_nodes("//project");
  for (auto it = sections.end(); it != sections.begin();) {
    const pugi::xml_node section = (--it)->node();
    if (section != doc.document_element()) section.parent().remove_child(section);
  }
}

// Builds the `project` section of one language file: the language's
// phrases merged with the attributes of the project, as the attribute list
// settings name them.
class ProjectSection {
 public:
  ProjectSection(pugi::xml_node root, std::string fileId, bool multiLanguage)
      : store_(Language()), fileId_(std::move(fileId)), multiLanguage_(multiLanguage) {
    section_ = appendElement(root, "project");
  }

  void addProjectTexts(Project& project);
  void addMenus();
  void addTables(AGPDatabase& db);

 private:
  using PhraseOf = std::function<std::string(const std::string& name)>;

  static pugi::xml_node appendElement(pugi::xml_node parent, const char* name);
  void addPhrase(pugi::xml_node parent, const std::string& name, const std::string& value);
  void addChosen(pugi::xml_node parent, const std::string& name, const std::string& attributeValue,
                 const std::string& phrase);
  void addEntry(pugi::xml_node parent, AGProperties& bag, const std::string& entry,
                const PhraseOf& phraseOf);
  void addField(pugi::xml_node tableNode, const std::string& tblName, AGPField& field,
                const std::vector<std::string>& entries);
  void addTagTexts(pugi::xml_node fieldNode, AGProperties& bag, const PhraseOf& phraseOf);

  AGPLanguage& store_;
  std::string fileId_;
  bool multiLanguage_;
  pugi::xml_node section_;
};

pugi::xml_node ProjectSection::appendElement(pugi::xml_node parent, const char* name) {
  pugi::xml_node element = parent.append_child(name);
  parent.append_child(pugi::node_pcdata).set_value("\r\n");
  return element;
}

// A phrase's id is the attribute's name in lower case, whatever the case of
// the setting that named it.
void ProjectSection::addPhrase(pugi::xml_node parent, const std::string& name,
                               const std::string& value) {
  pugi::xml_node phrase = appendElement(parent, "phrase");
  phrase.append_attribute("id") = text::toLower(name).c_str();
  phrase.append_attribute("value") = value.c_str();
}

void ProjectSection::addChosen(pugi::xml_node parent, const std::string& name,
                               const std::string& attributeValue, const std::string& phrase) {
  const std::string text = ChooseText(attributeValue, phrase, multiLanguage_);
  if (!text.empty()) addPhrase(parent, name, text);
}

void ProjectSection::addProjectTexts(Project& project) {
  AGProperties& bag = *project.Properties();
  for (const std::string& entry :
       AttributeList(GeneralSetting("LanguageProjectAttributes").toText()))
    if (const auto value = attributeOf(bag, entry))
      addChosen(section_, entry, *value, store_.GetProjectPhrase(fileId_, entry));
}

void ProjectSection::addMenus() {
  const std::string setting = GeneralSetting("LanguageMenuAttributes").toText();
  if (setting.empty()) return;
  const std::vector<std::string> entries = AttributeList(setting);
  for (const Ref<AGPMenu>& item : Menus().items()) {
    const std::string menuId = std::to_string(item->MenuId);
    pugi::xml_node menu = appendElement(section_, "menu");
    menu.append_attribute("id") = menuId.c_str();
    for (const std::string& entry : entries)
      if (item->MenuAttExist(entry))
        addChosen(menu, entry, item->MenuAtt(entry), store_.GetMenuPhrase(fileId_, menuId, entry));
  }
}

// An entry that is no attribute of the bag but holds "%n" names a numbered
// family: its members are taken from 1 on, up to the first number missing.
void ProjectSection::addEntry(pugi::xml_node parent, AGProperties& bag, const std::string& entry,
                              const PhraseOf& phraseOf) {
  if (const auto value = attributeOf(bag, entry)) {
    addChosen(parent, entry, *value, phraseOf(entry));
    return;
  }
  if (!HasNumberMark(entry)) return;
  for (int n = 1;; ++n) {
    const std::string name = NumberedName(entry, n);
    const auto value = attributeOf(bag, name);
    if (!value) return;
    addChosen(parent, name, *value, phraseOf(name));
  }
}

void ProjectSection::addTables(AGPDatabase& db) {
  const std::string tableSetting = GeneralSetting("LanguageTableAttributes").toText();
  if (tableSetting.empty()) return;
  const std::string fieldSetting = GeneralSetting("LanguageFieldAttributes").toText();
  const std::vector<std::string> tableEntries = AttributeList(tableSetting);
  const std::vector<std::string> fieldEntries = AttributeList(fieldSetting);
  AGPTables& tables = *db.Tables();
  for (std::int32_t t = 0; t < tables.Count(); ++t) {
    AGPTable& table = tables.tableAt(t);
    const std::string tblName = table.TblName();
    pugi::xml_node tableNode = appendElement(section_, "table");
    tableNode.append_attribute("id") = text::toLower(table.attrText("TblVar")).c_str();
    const PhraseOf phraseOf = [&](const std::string& name) {
      return store_.GetTablePhrase(fileId_, tblName, name);
    };
    for (const std::string& entry : tableEntries) addEntry(tableNode, table.bag(), entry, phraseOf);
    if (fieldSetting.empty()) continue;
    AGPFields& fields = *table.Fields();
    for (std::int32_t f = 0; f < fields.Count(); ++f)
      addField(tableNode, tblName, static_cast<AGPField&>(fields.at(f)), fieldEntries);
  }
}

void ProjectSection::addField(pugi::xml_node tableNode, const std::string& tblName, AGPField& field,
                              const std::vector<std::string>& entries) {
  pugi::xml_node fieldNode = appendElement(tableNode, "field");
  fieldNode.append_attribute("id") = text::toLower(field.FldParm()).c_str();
  const std::string fldName = field.attrText("FldName");
  const PhraseOf phraseOf = [&](const std::string& name) {
    return store_.GetFieldPhrase(fileId_, tblName, fldName, name);
  };
  for (const std::string& entry : entries) {
    if (text::toLower(entry) == "fldtagcaption%n")
      addTagTexts(fieldNode, field.bag(), phraseOf);
    else
      addEntry(fieldNode, field.bag(), entry, phraseOf);
  }
}

// The value and caption of each line of a fixed-value list. An attribute
// FldTagValue<n> or FldTagCaption<n> (or the caption's phrase) overrides
// what the line itself quotes; a field without lines gets nothing.
void ProjectSection::addTagTexts(pugi::xml_node fieldNode, AGProperties& bag,
                                 const PhraseOf& phraseOf) {
  const std::string values = attributeOf(bag, "FldTagValues").value_or("");
  if (values.empty()) return;
  const std::vector<std::string> lines = text::split(values, text::kCrLf);
  for (std::size_t n = 1; n <= lines.size(); ++n) {
    const std::string number = std::to_string(n);
    const std::optional<std::vector<std::string>> quoted = ParseQuotedList(lines[n - 1]);
    std::string value = attributeOf(bag, "FldTagValue" + number).value_or("");
    if (value.empty() && quoted && !quoted->empty()) value = (*quoted)[0];
    if (!value.empty()) addPhrase(fieldNode, "fldtagvalue" + number, value);

    const std::string captionName = "FldTagCaption" + number;
    std::string caption = ChooseText(attributeOf(bag, captionName).value_or(""),
                                     phraseOf(captionName), multiLanguage_);
    if (caption.empty() && quoted && quoted->size() > 1) caption = (*quoted)[1];
    if (!caption.empty()) addPhrase(fieldNode, "fldtagcaption" + number, caption);
  }
}

}  // namespace

// In check mode only the choice is registered. In real mode the result is
// whether the file was made: false when the user switched it off or the
// source does not load, which GenScript has reported already when it read
// the same file's header.
bool Generation::CreateLanguageFile(const std::string& id, const std::string& status,
                                    const std::string& remark, const std::string& source,
                                    const std::string& folder, const std::string& fileName,
                                    bool check, bool multiLanguage, bool skipSave) {
  if (source.empty() || !files::fileExists(source)) return false;
  const std::string target = OutputPath(folder, fileName, check);
  if (check) {
    addProjectItem(id, fileName, remark);
    return files::fileExists(target);
  }
  const AGControlItem* item = projectItem(id);
  const bool gen = !item || item->ItemGen;
  if (!gen) return false;
  Status().DispStatus(status);
  pugi::xml_document doc;
  if (!xml::loadFile(doc, source, xml::LineEnds::Keep)) return false;
  const std::string fileId = Language().GetFileId(fileName);
  pugi::xml_node root = doc.document_element();
  pugi::xml_attribute date = root.attribute("date");
  (date ? date : root.append_attribute("date")) = unpaddedDate().c_str();
  normaliseGlobals(doc, [this](const std::string& folderId) { return FolderById(folderId); });
  removeProjectSections(doc);

  ProjectSection section(root, fileId, multiLanguage);
  section.addProjectTexts(project_);
  section.addMenus();
  if (Ref<AGPDatabase> db = project_.DB()) section.addTables(*db);

  if (!skipSave) {
    files::removeFile(target);
    WriteUtf8File(target, xml::outerXml(doc));
    StepProgress();
  }
  return gen;
}

}  // namespace bw
