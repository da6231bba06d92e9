#include "persistence/project_reader.h"

#include <pugixml.hpp>

#include <exception>
#include <iterator>
#include <optional>
#include <string>

#include "core/agp_vars.h"
#include "core/automation_error.h"
#include "core/databases.h"
#include "core/keywords.h"
#include "core/names.h"
#include "core/registry.h"
#include "core/status.h"
#include "core/tables.h"
#include "extensions/extensions.h"
#include "language/phrase_store.h"
#include "persistence/bag_xml.h"
#include "persistence/defaults.h"
#include "persistence/master_details.h"
#include "persistence/menus.h"
#include "persistence/project_files.h"
#include "persistence/project_load.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/xml.h"
#include "platform/xml_outline.h"
#include "schema/dialect.h"
#include "template/code_base.h"
#include "template/custom_scripts.h"
#include "template/script_host.h"

namespace bw {
namespace {

// Leaves Load with ProjErr as it stands.
struct LoadStopped {};

std::string productError(const std::string& text) { return AGPVars().ProductName + ": " + text; }

[[noreturn]] void stop(const std::string& projErr) {
  AGPVars().ProjErr = projErr;
  throw LoadStopped{};
}

std::string lowerName(const pugi::xml_node& node) { return text::toLower(node.name()); }


bool isBooleanText(std::string_view value) {
  return ConvertSetting(Variant(std::string(value)), DataKind::Boolean).toBoolean().value_or(false);
}

// The extension of the file name, in lower case; "" without one.
std::string fileExtension(const std::string& path) {
  const std::size_t slash = path.find_last_of("\\/");
  const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
  const std::size_t dot = name.rfind('.');
  return dot == std::string::npos ? std::string() : text::toLower(name.substr(dot + 1));
}

// Converts `path` through the converter object; nullopt when it cannot.
std::optional<std::string> convertFile(const std::string& path) {
  const AGPVarsData& vars = AGPVars();
  Ref<Dispatch> converter = CreateConverter("ztconvert.Converter2");
  if (!converter) return std::nullopt;
  try {
    const Variant args[] = {Variant(path), Variant(vars.ConvertType), Variant(AppVersionText())};
    return converter->get("ConvertFile", args).toText();
  } catch (const AutomationError&) {
    return std::nullopt;
  }
}


// Quote characters of a value of ADO type `type` in SQL text; nullopt for
// types whose quotes the file decides.
std::optional<std::string_view> valueQuote(std::int32_t type, bool access) {
  switch (type) {
    case 20: case 11: case 6: case 14: case 5: case 3: case 131: case 4:
    case 2: case 16: case 21: case 19: case 18: case 17: case 139:
      return access ? std::optional<std::string_view>("") : std::nullopt;
    case 7: case 133: case 134: case 135:
      return access ? "#" : "'";
    case 8: case 129: case 72: case 203: case 202: case 201: case 200: case 130: case 205: case 204:
      return "'";
    default:
      return std::nullopt;
  }
}

// Files written since FldDbDefault exists have it on every field; one
// without it on the first field predates it.
std::optional<bool> tableLacksDbDefault(const pugi::xml_node& table) {
  const pugi::xml_node field = table.child("Field");
  if (!field) return std::nullopt;
  return !field.attribute("FldDbDefault");
}

void blankDbDefaults(pugi::xml_node table) {
  for (pugi::xml_node field : table.children("Field")) {
    pugi::xml_attribute a = field.attribute("FldDbDefault");
    (a ? a : field.append_attribute("FldDbDefault")) = "";
  }
}

// A project file as read: one document, or, for a file the outline scan
// can cut, the document without the content of its Database element and
// that content's elements as texts, parsed one at a time while loading.
// Either way only a part of the file is ever a tree.
struct ProjectDocument {
  std::string text;
  pugi::xml_document doc;
  std::vector<std::string_view> databaseItems;
  bool cut = false;

  // False with `failure` set when the file cannot be read or is no XML;
  // the failure's offset is one in `text`.
  bool read(const std::string& path, xml::LoadResult& failure) {
    auto bytes = files::readFile(path);
    if (!bytes) {
      failure = xml::loadFile(doc, path);
      return false;
    }
    text = std::move(*bytes);
    databaseItems.clear();
    cut = cutAtDatabase();
    if (cut) return true;
    failure = xml::loadText(doc, text);
    return failure.ok;
  }

 private:
  bool cutAtDatabase() {
    auto root = xml::outlineRoot(text);
    auto database = root ? xml::findChild(text, *root, "Database") : std::nullopt;
    auto items = database ? xml::outlineChildren(text, *database) : std::nullopt;
    if (!items) return false;
    const std::string rest =
        text.substr(0, database->contentBegin) + text.substr(database->contentEnd);
    if (!xml::loadText(doc, rest)) return false;
    for (const xml::ElementSpan& item : *items)
      databaseItems.push_back(std::string_view(text).substr(item.begin, item.end - item.begin));
    return true;
  }
};

void loadMenuItem(AGPMenu& menu, const pugi::xml_node& element) {
  for (const pugi::xml_attribute& a : element.attributes()) {
    const std::string name = text::toLower(a.name());
    const Variant value(std::string(a.value()));
    const auto number = [&](auto& field) {
      if (auto n = value.toLong()) field = static_cast<std::remove_reference_t<decltype(field)>>(*n);
    };
    if (name == "menuid") number(menu.MenuId);
    else if (name == "menutext") menu.MenuText = a.value();
    else if (name == "menuparentid") number(menu.MenuParentId);
    else if (name == "menugroup") menu.MenuGroup = isBooleanText(a.value());
    else if (name == "menusource") menu.MenuSource = a.value();
    else if (name == "menuexturl") menu.MenuExtUrl = a.value();
    else if (name == "menuanonymous") number(menu.MenuAnonymous);
    else if (name == "menusecurity") menu.MenuSecurity = a.value();
    else if (name == "menuurl") menu.MenuUrl = a.value();
    else if (name == "menucustomurl") menu.MenuCustomUrl = isBooleanText(a.value());
    else if (name == "menulevel") number(menu.MenuLevel);
    else if (name == "menushow") menu.MenuShow = isBooleanText(a.value());
    else if (name == "menudisplayorder") number(menu.MenuDisplayOrder);
  }
}

}  // namespace

// The reader of one Load call.
class ProjectReader {
 public:
  explicit ProjectReader(Project& project) : project_(project), vars_(AGPVars()) {}

  void read(const std::string& projFile);

 private:
  void loadCodeBase();
  void loadDocument();
  void convertForeignFormat();
  void checkVersion();
  bool readConverted(const std::string& convertedPath);
  void loadDatabaseItems();
  void loadMenus();
  void showProgress();
  void loadProjectAttributes();
  void loadProjectNodes(const pugi::xml_node& element);
  void loadExtensionNodes(const pugi::xml_node& element);
  void loadDatabase(const pugi::xml_node& element);
  void loadTable(const pugi::xml_node& element);
  void loadField(const pugi::xml_node& element);
  void loadMasterDetail(const pugi::xml_node& element);
  void loadCustomScript(const pugi::xml_node& element);
  void loadPhrase(const std::string& kind, const pugi::xml_node& element);
  void updateRelatedProject();
  void takeDatabaseSettings();

  pugi::xml_node root() const { return file_.doc.document_element(); }

  Project& project_;
  AGPVarsData& vars_;
  ProjectDocument file_;
  std::string path_;
  std::string version_;
  bool converted_ = false;
  std::optional<bool> needDbDefault_;  // known at the first field
  std::int32_t progressTotal_ = 0;
  AGPDatabase* db_ = nullptr;
  AGPTable* table_ = nullptr;
};

void LoadProjectFile(Project& project, const std::string& projFile) {
  AGPVarsData& vars = AGPVars();
  vars.ProjErr.clear();
  try {
    ProjectReader(project).read(projFile);
    return;
  } catch (const LoadStopped&) {
  } catch (const AutomationError& e) {
    vars.ProjErr = productError("Load Project File failed! " + e.description());
  } catch (const std::exception& e) {
    vars.ProjErr = productError("Load Project File failed! " + std::string(e.what()));
  }
  Status().CloseStatus();  // a load that stops midway leaves no progress display open
}

void ProjectReader::read(const std::string& projFile) {
  path_ = projFile;
  if (!CreateRuntimeObjects()) throw LoadStopped{};
  LoadDefault(project_);
  loadCodeBase();
  loadDocument();
  version_ = root().attribute("Version").value();
  convertForeignFormat();
  checkVersion();
  loadMenus();
  project_.setKeywordFile(GeneralSetting("Keyword").toText());
  Keywords().Load(Variant(project_.KeywordFile()));
  if (std::string_view(root().name()) != "Project") stop(productError("Invalid Project File!"));
  showProgress();
  loadProjectAttributes();
  {
    DefinitionBulkLoad bulk;
    loadProjectNodes(root());
    loadExtensionNodes(root());
  }
  updateRelatedProject();
  if (progressTotal_ > 0) Status().CloseStatus();
  if (!converted_) vars_.Dirty = false;
  EnsureProjectIds(project_);

  if (!files::fileExists(project_.attrText("Template")))
    project_.setAttr("Template", ReadSetting("HKCU", vars_.RegProject, "Template"));
  vars_.SQLQuote = project_.attr("SQLQuote");
  const std::string dateFormat = project_.attrText("defaultDateFormat");
  vars_.DefaultDateFormat =
      parseNumber(dateFormat) ? Variant(dateFormat).toInteger().value_or(0) : std::int16_t{0};

  if (db_)
    takeDatabaseSettings();
  else
    vars_.ProjErr = productError("No Database Information in Project File!");
  vars_.ProjectFile = projFile;
}

void ProjectReader::loadCodeBase() {
  project_.setCodeBaseFile(GeneralSetting("CodeBase").toText());
  const std::string& file = project_.CodeBaseFile();
  if (!file.empty() && files::fileExists(file)) CodeBase().Load(Variant(file));
}

void ProjectReader::loadDocument() {
  xml::LoadResult failure;
  if (file_.read(path_, failure)) return;
  if (failure.offset >= 0) {
    const auto place = LocateParseError(file_.text, static_cast<std::size_t>(failure.offset));
    stop(productError("Load project file failed! " + ParseErrorMessage(place)));
  }
  throw std::runtime_error(failure.reason);
}

// Takes the converter's output in place of the file when it reads.
bool ProjectReader::readConverted(const std::string& convertedPath) {
  ProjectDocument converted;
  xml::LoadResult failure;
  if (!converted.read(convertedPath, failure)) return false;
  file_ = std::move(converted);
  path_ = convertedPath;
  converted_ = true;
  return true;
}

// A file of another format goes through the converter first.
void ProjectReader::convertForeignFormat() {
  const std::string extension = fileExtension(path_);
  if (extension.empty() || extension == vars_.ProjectExt) return;
  const auto convertedPath = convertFile(path_);
  if (!convertedPath || !readConverted(*convertedPath))
    stop(productError("Unable to convert project file from '" + extension + "' to '" +
                      vars_.ProjectExt + "'."));
  version_ = root().attribute("Version").value();
}

void ProjectReader::checkVersion() {
  switch (CompareVersion(version_, vars_.ProjectVersion)) {
    case -1:
      // An older file the converter cannot bring forward loads as it is.
      if (const auto convertedPath = convertFile(path_)) readConverted(*convertedPath);
      return;
    case 2:
      stop(productError("Project file version (" + version_ + ") newer than software (" +
                        project_.AppVersion() + ")! Please check!"));
    default:
      return;
  }
}

// The menu list is replaced from the document already read, rather than by
// reading the file a second time.
void ProjectReader::loadMenus() {
  AGPMenus& menus = Menus();
  menus.clear();
  if (lowerName(root()) != "project") {
    vars_.ProjErr = productError("Project file is invalid!");
    return;
  }
  for (const pugi::xml_node& element : root().children()) {
    if (lowerName(element) != "menu") continue;
    auto menu = make<AGPMenu>();
    loadMenuItem(*menu, element);
    menus.append(std::move(menu));
  }
}

void ProjectReader::showProgress() {
  const auto children = root().child("Database").children();
  progressTotal_ = static_cast<std::int32_t>(
      file_.cut ? file_.databaseItems.size() : std::distance(children.begin(), children.end()));
  vars_.ProgressTotal = progressTotal_;
  vars_.ProgressDone = 0;
  if (progressTotal_ > 0) Status().ShowStatus(project_.hwnd(), "Loading Project File...");
}

void ProjectReader::loadProjectAttributes() {
  LoadBagFromElement(*project_.Properties(), root(), true);
  if (project_.attrText("SmtpServer").empty()) {
    project_.setAttr("SmtpServer", Variant(std::string("localhost")));
    project_.setAttr("SmtpServerPort", Variant(25));
  }
  const std::string brand = project_.attrText("ThemeBrandPrimary");
  if (brand.size() == 7 && brand.front() == '#')
    project_.SetV("ThemeBrandPrimary", Variant("darken(" + text::toLower(brand) + ", 6.5%)"));
  project_.setAttr("DotNetFrameworkVersion", Variant(std::string("4.0")));
  vars_.ProgramLanguage = project_.ProgramLanguage();
  const std::string projVar = MakeVarName(project_.ProjName(), "");
  project_.setAttr("ProjVar", Variant(projVar));
  vars_.ProjVar = projVar;
}

void ProjectReader::loadProjectNodes(const pugi::xml_node& element) {
  for (const pugi::xml_node& child : element.children()) {
    if (child.type() != pugi::node_element) continue;
    const std::string name = lowerName(child);
    if (name == "database") loadDatabase(child);
    else if (name == "table") loadTable(child);
    else if (name == "field") loadField(child);
    else if (name == "masterdetail") loadMasterDetail(child);
    else if (std::string_view(child.name()) == "CustomScript") loadCustomScript(child);
    else if (name.ends_with("phrase")) loadPhrase(name, child);
  }
}

void ProjectReader::loadDatabase(const pugi::xml_node& element) {
  std::string name = xml::attributeNoCase(element, "DBName");
  if (name.empty()) name = "zt_db";
  db_ = project_.addDatabase(name).get();
  if (!db_) return;
  LoadBagFromElement(db_->bag(), element, false);
  if (file_.cut)
    loadDatabaseItems();
  else
    loadProjectNodes(element);
}

// The tables of a file read in pieces: each parsed, loaded and let go.
void ProjectReader::loadDatabaseItems() {
  for (const std::string_view item : file_.databaseItems) {
    pugi::xml_document piece;
    const pugi::xml_parse_result parsed = piece.load_buffer(item.data(), item.size());
    if (!parsed) {
      const std::size_t offset =
          static_cast<std::size_t>(item.data() - file_.text.data()) + static_cast<std::size_t>(parsed.offset);
      stop(productError("Load project file failed! " +
                        ParseErrorMessage(LocateParseError(file_.text, offset))));
    }
    loadProjectNodes(piece);
  }
}

void ProjectReader::loadTable(const pugi::xml_node& element) {
  const std::string name = xml::attributeNoCase(element, "TblName");
  if (!db_ || name.empty()) return;
  if (progressTotal_ > 0) {
    Status().DispStatus("Loading TABLE/VIEW \"" + name + "\"...");
    ++vars_.ProgressDone;
    Status().SetStatus(Variant(ProgressPercent(vars_.ProgressDone, progressTotal_)));
  }
  if (std::string_view(element.name()) == "Table") {
    if (!needDbDefault_) needDbDefault_ = tableLacksDbDefault(element);
    if (needDbDefault_.value_or(false)) blankDbDefaults(element);
  }
  AGPTable* table = db_->Tables()->appendLoaded(name);
  if (!table) return;
  table_ = table;
  table->LoadTableDefault();
  LoadBagFromElement(table->bag(), element, false);
  table->setAttr("TblVar", Variant(MakeVarName(name, "")));
  if (DbmsKind(db_->attrText("DBDBMSName")) == dbms::kPostgreSql &&
      table->attrText("TblSchema") == "public") {
    const std::string version = db_->attrText("DBDBMSVer").substr(0, 3);
    if (parseNumber(version) && Variant(version).toLong().value_or(0) < 703)
      table->setAttr("TblSchema", Variant(std::string()));
  }
  loadProjectNodes(element);
  if (table->Fields()->Count() > 0) table->setAttr("TblLoaded", Variant(true));
}

void ProjectReader::loadField(const pugi::xml_node& element) {
  const std::string name = xml::attributeNoCase(element, "FldName");
  if (!db_ || !table_ || name.empty()) return;
  AGPField* field = table_->Fields()->appendLoaded(name);
  if (!field) return;
  LoadBagFromElement(field->bag(), element, false);
  field->setAttr("FldVar", Variant(MakeVarName(name, "x_")));
  const bool access = DbmsKind(db_->attrText("DBDBMSName")) == dbms::kAccess;
  if (auto quote = valueQuote(field->attrInteger("FldType"), access)) {
    field->setAttr("FldQuoteS", Variant(std::string(*quote)));
    field->setAttr("FldQuoteE", Variant(std::string(*quote)));
  }
  if (field->attrBool("FldAutoIncrement")) field->setAttr("FldAdd", Variant(false));
  field->setAttr("FldGenerate", field->attr("FldSupport"));
  if (xml::attributeNoCase(element, "FldExport").empty()) field->setAttr("FldExport", field->attr("FldList"));
  const std::string view = field->attrText("FldViewTemplate");
  if (text::ifindAscii(view, "\"id\":\"QRCode\"") != std::string::npos) {
    std::string fixed = text::replaceAll(view, "\"id\":\"QRCode\"", "\"id\":\"Barcode\"");
    fixed = text::replaceAll(fixed, "\"name\":\"QRCode Library\"", "\"name\":\"Barcode Library\"");
    fixed = text::replaceAll(fixed, "\"qrcode\"", "\"barcode\"");
    fixed = text::replaceAll(fixed, "\"qrcode_field\"", "\"barcode_field\"");
    fixed = text::replaceAll(fixed, "}", ",\"encode\":\"QRCODE\",\"encode_field\":null}");
    field->setAttr("FldViewTemplate", Variant(fixed));
  }
}

void ProjectReader::loadMasterDetail(const pugi::xml_node& element) {
  AGPMasterDetails& list = MasterDetails();
  const std::string master = xml::attributeNoCase(element, "MasterTable");
  const std::string detail = xml::attributeNoCase(element, "DetailTable");
  if (!list.Add(master, detail)) return;
  Ref<AGPMasterDetail> item = list.Item(master, detail);
  item->setEnforceReferentialIntegrity(isBooleanText(xml::attributeNoCase(element, "EnforceReferentialIntegrity")));
  item->setCascadeUpdate(isBooleanText(xml::attributeNoCase(element, "CascadeUpdate")));
  item->setCascadeDelete(isBooleanText(xml::attributeNoCase(element, "CascadeDelete")));
  for (const pugi::xml_node& relation : element.children("Relation"))
    item->AddRelation(xml::attributeNoCase(relation, "MasterField"), xml::attributeNoCase(relation, "DetailField"));
}

void ProjectReader::loadCustomScript(const pugi::xml_node& element) {
  ScriptPlace place{
      .ScriptType = xml::attributeNoCase(element, "ScriptType"),
      .ScriptCodeType = xml::attributeNoCase(element, "ScriptCodeType"),
      .ScriptName = xml::attributeNoCase(element, "ScriptName"),
      .ScriptLanguage = xml::attributeNoCase(element, "ScriptLanguage"),
      .ScriptCtrlID = xml::attributeNoCase(element, "ScriptCtrlID"),
      .ScriptL1Key = xml::attributeNoCase(element, "ScriptL1Key"),
      .ScriptL2Key = xml::attributeNoCase(element, "ScriptL2Key"),
  };
  // Written before scripts had a language: the code is of the old kind.
  const bool legacy = place.ScriptLanguage.empty();
  if (legacy)
    place.ScriptLanguage =
        place.ScriptType == "Server" ? project_.ProgramLanguage() : std::string("JavaScript");
  AGPCustomScripts& scripts = CustomScripts();
  if (!scripts.add(place)) return;
  std::string code = element.first_child().value();
  if (legacy) {
    const std::string source = CodeBase().CodeSource(place.ScriptType, place.ScriptCodeType,
                                                     place.ScriptName, place.ScriptLanguage);
    code = WrapLegacyScriptCode(place.ScriptName, source, code, place.ScriptLanguage);
  }
  if (AGPCustomScript* script = scripts.item(place)) script->setScriptCode(code);
}

void ProjectReader::loadPhrase(const std::string& kind, const pugi::xml_node& element) {
  AGPLanguage& language = Language();
  const auto a = [&](std::string_view name) { return xml::attributeNoCase(element, name); };
  if (kind == "projectphrase")
    language.SetProjectPhrase(a("LanguageId"), a("ProjectAttribute"), a("Phrase"));
  else if (kind == "menuphrase")
    language.SetMenuPhrase(a("LanguageId"), a("MenuId"), a("MenuAttribute"), a("Phrase"));
  else if (kind == "tablephrase")
    language.SetTablePhrase(a("LanguageId"), a("TableName"), a("TableAttribute"), a("Phrase"));
  else if (kind == "fieldphrase")
    language.SetFieldPhrase(a("LanguageId"), a("TableName"), a("FieldName"), a("FieldAttribute"),
                            a("Phrase"));
}

// Extensions come second, so that their entries find the project's tables.
// Their elements are kept whole and written back as they were.
void ProjectReader::loadExtensionNodes(const pugi::xml_node& element) {
  for (const pugi::xml_node& child : element.children()) {
    if (lowerName(child) != "extension") continue;
    Extension extension;
    extension.Name = xml::attributeNoCase(child, "Name");
    if (extension.Name.empty()) continue;
    for (const pugi::xml_node& table :
         child.child("ExtProject").child("ExtDatabase").children("ExtTable")) {
      ExtensionTable entry;
      entry.TblName = xml::attributeNoCase(table, "TblName");
      for (const pugi::xml_node& field : table.children("ExtField"))
        entry.fields.push_back(xml::attributeNoCase(field, "FldName"));
      extension.tables.push_back(std::move(entry));
    }
    auto kept = std::make_shared<pugi::xml_document>();
    kept->append_copy(child);
    extension.element = std::move(kept);
    Extensions().append(std::move(extension));
  }
}

// A related (reports) project follows this project's compatibility version.
void ProjectReader::updateRelatedProject() {
  const std::string related = project_.attrText("AppRelatedProject");
  if (related.empty() || !files::fileExists(related)) return;
  pugi::xml_document relatedDoc;
  if (!xml::loadFile(relatedDoc, related)) return;
  pugi::xml_node relatedRoot = relatedDoc.document_element();
  const std::string relatedVersion = relatedRoot.attribute("Version").value();
  if (relatedVersion.empty()) return;
  const auto firstPart = [](const std::string& v) { return v.substr(0, v.find('.')); };
  project_.setAttr("AppCompatVersion", Variant(firstPart(relatedVersion)));
  const std::string ours = firstPart(vars_.ProductVersion);
  if (xml::attributeNoCase(relatedRoot, "AppCompatVersion") == ours) return;
  const std::string encoding = text::toLower(relatedDoc.first_child().attribute("encoding").value());
  pugi::xml_attribute compat = relatedRoot.attribute("AppCompatVersion");
  (compat ? compat : relatedRoot.append_attribute("AppCompatVersion")) = ours.c_str();
  std::string error;
  SaveDom(related, relatedDoc, encoding.empty() || encoding == "utf-8", error);
}

void EnsureProjectIds(Project& project) {
  if (project.attrText("ProjID").empty()) project.setAttr("ProjID", Variant(Status().GetGUID()));
  const std::string related = project.attrText("AppRelatedProject");
  if (related.empty() || !files::fileExists(related)) return;
  pugi::xml_document relatedDoc;
  if (!xml::loadFile(relatedDoc, related)) return;
  pugi::xml_node relatedRoot = relatedDoc.document_element();
  if (!std::string_view(relatedRoot.attribute("ProjID").value()).empty()) return;
  pugi::xml_attribute id = relatedRoot.attribute("ProjID");
  (id ? id : relatedRoot.append_attribute("ProjID")) = Status().GetGUID().c_str();
  std::string error;
  SaveDom(related, relatedDoc, DetectEncoding(related) == "UTF-8", error);
}

void ProjectReader::takeDatabaseSettings() {
  vars_.DBMSName = db_->attrText("DBDBMSName");
  SetQuoteChars(vars_.DBMSName);
  vars_.SecDefault = db_->attr("SecDefault");
  // TblKey is derived: the table's primary key fields, sorted.
  AGPTables& tables = *db_->Tables();
  for (std::int32_t t = 0; t < tables.Count(); ++t) {
    AGPTable& table = tables.tableAt(t);
    std::vector<std::string> keys;
    AGPFields& fields = *table.Fields();
    for (std::int32_t f = 0; f < fields.Count(); ++f) {
      AGPField& field = static_cast<AGPField&>(fields.at(f));
      if (field.attrBool("FldIsPrimaryKey")) keys.push_back(field.attrText("FldName"));
    }
    table.setAttr("TblKey", Variant(SortKeyList(text::join(keys, text::kCrLf))));
  }
}

}  // namespace bw
