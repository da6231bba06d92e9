#include "core/agp.h"

#include <pugixml.hpp>

#include "core/agp_vars.h"
#include "core/attribute_members.h"
#include "core/names.h"
#include "core/project_attributes.h"
#include "core/registry.h"
#include "core/status.h"
#include "extensions/extensions.h"
#include "language/phrase_store.h"
#include "persistence/machine_defaults.h"
#include "persistence/menus.h"
#include "platform/files.h"
#include "platform/hash.h"
#include "platform/text.h"
#include "platform/xml.h"
#include "template/code_base.h"
#include "template/composition.h"
#include "template/controls.h"
#include "template/custom_scripts.h"
#include "template/settings_file.h"

namespace bw {

// Construction. The interface language needs no setting here: the engine's
// messages are English on every platform.
AGP::AGP()
    : properties_(make<AGProperties>(ProjectLayout())),
      controlList_(make<AGPControls>()),
      controlItems_(make<AGControlItems>()),
      databases_(make<AGPDatabases>()) {
  AGPVarsData& vars = AGPVars();
  setAttr("ProjID", Status().GetGUID());

  appVersion_ = AppVersionText();
  vars.ProductVersion = appVersion_.substr(0, appVersion_.rfind('.'));
  vars.ProjectVersion = vars.ProductVersion;
  vars.TemplateVersion = vars.ProductVersion;
  vars.ProjectFile.clear();

  vars.ScriptLanguage = "JScript";
  vars.PlatformName = "ASP.NET";
  vars.ProjectExt = "agx";
  vars.ConvertType = "ASPX";
  vars.ProductKey = "Brindlework";
  vars.ProductName = "Brindlework";

  setAttr("defaultDateFormat", Variant(std::int16_t{5}));
  BuildSettingsPaths(vars);

  // A user hive without LanguageFolder belongs to a user's first run.
  if (GeneralSetting("LanguageFolder").toText().empty())
    CopyMachineDefaults();

  const std::string templatePath = ReadSetting("HKCU", vars.RegProject, "Template").toText();
  if (auto slash = templatePath.rfind('\\'); slash != std::string::npos)
    vars.TemplateName = templatePath.substr(slash + 1);

  LoadDefault();
  makeUserFolders();

  const std::string engine = GeneralSetting("ScriptEngine").toText();
  if (!engine.empty()) vars.ScriptLanguage = engine;

  loadThemeDefaults();
  templateExt_ = "tpl";
  // Nothing the user did has changed yet: the values above are the starting
  // point, theme styles included.
  vars.Dirty = false;
}

AGP::~AGP() = default;

void AGP::makeUserFolders() {
  AGPVarsData& vars = AGPVars();
  vars.DocumentsFolder = files::documentsFolder();
  vars.UserFolder = files::joinPath(vars.DocumentsFolder, ProductKeyWord());
  vars.BackupFolder = vars.UserFolder + "\\Backup";
  vars.ReportFolder = vars.UserFolder + "\\Report";
  for (const std::string* folder : {&vars.UserFolder, &vars.BackupFolder, &vars.ReportFolder})
    files::createFolders(*folder);
}

// Theme defaults: the style values of bootstrap.xml, then those of the
// project's theme, which override them. A file that does not load is
// skipped: themes are optional.
void AGP::loadThemeDefaults() {
  const std::string folder = GeneralSetting("ThemeFolder").toText();
  applyThemeFile(files::joinPath(folder, "bootstrap.xml"));
  const std::string theme = attrText("ApplicationTheme");
  if (!theme.empty()) applyThemeFile(files::joinPath(folder, text::toLower(theme) + ".xml"));
}

void AGP::applyThemeFile(const std::string& path) {
  pugi::xml_document doc;
  if (!xml::loadFile(doc, path)) return;
  for (pugi::xml_node node : doc.document_element().children()) {
    if (node.type() != pugi::node_element || text::toLower(node.name()) != "style") continue;
    SetV(node.attribute("id").value(), Variant(node.attribute("value").value()));
  }
}

void AGP::AddProj(const std::string& projectName) {
  setProjName(projectName);
  LoadDefault();
  projInit_ = true;
}

// The stores of menus, phrases and extensions are emptied when the database
// is unloaded, not here; deleting the database takes its tables' entries.
void AGP::DeleteProj() {
  properties_->reset(ProjectLayout());
  std::vector<std::string> names;
  for (std::int32_t position = 1; position <= databases_->Count(); ++position)
    names.push_back(databases_->Item(Variant(position))->DBName());
  for (const std::string& name : names) databases_->Delete(Variant(name));
  curDBName_.clear();
  projInit_ = false;
}

Ref<AGPDatabase> AGP::DB() const {
  AGPDatabase* db = databases_->database(curDBName_);
  return db ? refTo(db) : nullptr;
}

Ref<AGPDatabase> AGP::addDatabase(const std::string& name) {
  databases_->Add(name);
  if (!AGPVars().ProjErr.empty()) return {};
  curDBName_ = name;
  return DB();
}

Ref<Dispatch> AGP::MenuList() const { return refTo(&Menus()); }
Ref<Dispatch> AGP::Extensions() const { return refTo(&bw::Extensions()); }
Ref<Dispatch> AGP::Language() const { return refTo(&bw::Language()); }
Ref<Dispatch> AGP::customscripts() const { return refTo(&CustomScripts()); }

Variant AGP::GetV(const std::string& name) {
  if (auto slot = properties_->find(name))
    return ConvertSetting(properties_->valueAt(*slot), properties_->defAt(*slot).dataType);
  Variant fallback = Settings().LoadSettingValue("Project", name);
  if (fallback.isEmpty() || fallback.isNull()) return Variant("");
  properties_->add(AttributeDef{name, Settings().LoadSettingType("Project", name)});
  properties_->setValueAt(properties_->size() - 1, fallback);
  return fallback;
}

Variant AGP::SetV(const std::string& name, const Variant& value) {
  if (auto slot = properties_->find(name)) {
    properties_->setValueAt(*slot, ConvertSetting(value, properties_->defAt(*slot).dataType));
  } else {
    properties_->add(AttributeDef{name, Settings().LoadSettingType("Project", name)});
    properties_->setValueAt(properties_->size() - 1, value);
  }
  return Variant();
}

Variant AGP::typedAttr(std::string_view name) {
  std::size_t slot = properties_->ensure(name);
  return CoerceOrZero(properties_->valueAt(slot), properties_->kindAt(slot));
}

void AGP::setProjName(const std::string& name) {
  setAttr("ProjName", Variant(name));
  const std::string var = MakeVarName(name, "");
  setAttr("ProjVar", Variant(var));
  AGPVars().ProjVar = var;
}

// Reserved words differ by language, so a loaded database's variable names
// are rebuilt when the language changes.
void AGP::setProgramLanguage(const std::string& language) {
  setAttr("ProgramLanguage", Variant(language));
  AGPVars().ProgramLanguage = language;
  if (Ref<AGPDatabase> db = DB()) db->Tables()->rebuildVariableNames();
}

void AGP::setAppCompatVersion(const Variant& value) {
  Variant converted = CoerceOrZero(value, DataKind::Integer);
  setAttr("AppCompatVersion", converted);
  AGPVars().AppCompatVersion = converted;
}

void AGP::setDestination(const std::string& folder) {
  setAttr("Destination", Variant(folder));
  AGPVars().Destination = folder;
}

std::string AGP::SecPasswdEncript() {
  const std::string password = attrText("SecPasswd");
  const std::string format = text::toLower(attrText("PasswordFormat"));
  if (format == "sha1") return hash::sha1Hex(password);
  if (format == "md5") return hash::md5Hex(password);
  return password;
}

Variant AGP::ReadRegValue(const Variant& sClass, const Variant& sSection, const Variant& sKey) {
  const bool machine = text::iequals(sClass.toText(), "hklm");
  return ReadSetting(Variant(machine ? "HKLM" : "HKCU"), sSection, sKey);
}

void AGP::AddTrace(const std::string& line) {
  std::string& trace = AGPVars().Trace;
  if (!trace.empty()) trace += text::kCrLf;
  trace += line;
}

bool AGP::IsDirty() const { return AGPVars().Dirty; }
std::string AGP::ProjErr() const { return AGPVars().ProjErr; }
void AGP::setProjErr(const std::string& text) { AGPVars().ProjErr = text; }
std::string AGP::FldSrchOprs(std::int16_t adoType) const { return bw::FldSrchOprs(adoType); }

// ---------------------------------------------------------------------------
// Custom scripts and the code base

bool AGP::AddCustomScript(const std::string& sScriptType, const std::string& sCodeType,
                          const std::string& sName, const std::string& sLanguage,
                          const std::string& sCtrlID, const std::string& sL1Key,
                          const std::string& sL2Key, const std::string& sCode) {
  const ScriptPlace place{sScriptType, sCodeType, sName, sLanguage, sCtrlID, sL1Key, sL2Key};
  AGPCustomScripts& scripts = CustomScripts();
  if (!scripts.add(place)) return false;
  scripts.item(place)->setScriptCode(sCode);
  return true;
}

// ScriptExist also answers for any script of a kind on a table, which names
// no script to update; only a script of exactly this place takes the code.
bool AGP::UpdateCustomScript(const std::string& sScriptType, const std::string& sCodeType,
                             const std::string& sName, const std::string& sLanguage,
                             const std::string& sCtrlID, const std::string& sL1Key,
                             const std::string& sL2Key, const std::string& sCode) {
  AGPCustomScript* script = CustomScripts().item(
      ScriptPlace{sScriptType, sCodeType, sName, sLanguage, sCtrlID, sL1Key, sL2Key});
  if (!script) return false;
  script->setScriptCode(sCode);
  return true;
}

bool AGP::DeleteCustomScript(const std::string& sScriptType, const std::string& sCodeType,
                             const std::string& sName, const std::string& sLanguage,
                             const std::string& sCtrlID, const std::string& sL1Key,
                             const std::string& sL2Key) {
  return CustomScripts().Delete(sScriptType, sCodeType, sName, sLanguage, sCtrlID, sL1Key, sL2Key);
}

std::string AGP::LoadCodeBase(const std::string& sScriptType, const std::string& sCodeType,
                              const std::string& sName, const std::string& sLanguage) {
  return CodeBase().CodeSource(sScriptType, sCodeType, sName, sLanguage);
}

bool AGP::CodeBaseExist(const std::string& sScriptType, const std::string& sCodeType,
                        const std::string& sName, const std::string& sLanguage) {
  return CodeBase().CodeExist(sScriptType, sCodeType, sName, sLanguage);
}

// The file is read on every call, so that the host shows the code base as
// it is now. A file that fails to load keeps the records of the last good
// one; its reason stays in CodeBase().error(), as ProjErr is for the project.
std::string AGP::LoadCustomScriptCode(const std::string& sScriptType, const std::string& sCodeType,
                                      const std::string& sName, const std::string& sLanguage,
                                      const std::string&, const std::string&, const std::string&) {
  AGPVars().ProjErr.clear();
  const std::string file = GeneralSetting("CodeBase").toText();
  if (!files::fileExists(file)) return {};
  CodeBase().Load(Variant(file));
  return TidyOutput("", LoadCodeBase(sScriptType, sCodeType, sName, sLanguage));
}

// ---------------------------------------------------------------------------
// Members. The attributes of the project table become properties of their
// own name and type; the members written out here come first and win.

namespace {

MemberTable buildMembers() {
  MemberTable table{
      property<&AGP::ProjInit>("ProjInit"),
      property<&AGP::Properties>("Properties"),
      property<&AGP::ControlList>("ControlList"),
      property<&AGP::ControlItems>("ControlItems"),
      method<&AGP::GenCheck>("GenCheck"),
      method<&AGP::GenScript>("GenScript"),
      method<&AGP::GetV>("GetV"),
      method<&AGP::SetV>("SetV"),
      method<&AGP::AddProj>("AddProj"),
      method<&AGP::DeleteProj>("DeleteProj"),
      method<&AGP::LoadDefault>("LoadDefault"),
      method<&AGP::SaveDefault>("SaveDefault"),
      method<&AGP::ReadRegValue>("ReadRegValue"),
      method<&AGP::AddTrace>("AddTrace"),
      method<&AGP::IsDirty>("IsDirty"),
      method<&AGP::FldSrchOprs>("FldSrchOprs"),
      property<&AGP::ProjErr, &AGP::setProjErr>("ProjErr"),
      property<&AGP::hwnd, &AGP::setHwnd>("hwnd"),
      property<&AGP::ProjName, &AGP::setProjName>("ProjName"),
      property<&AGP::ProgramLanguage, &AGP::setProgramLanguage>("ProgramLanguage"),
      property<&AGP::AppCompatVersion, &AGP::setAppCompatVersion>("AppCompatVersion"),
      property<&AGP::Destination, &AGP::setDestination>("Destination"),
      property<&AGP::SecPasswdEncript>("SecPasswdEncript"),
      method<&AGP::ParseScript>("ParseScript"),
      method<&AGP::Load>("Load"),
      method<&AGP::Save>("Save"),
      method<&AGP::CheckSequences>("CheckSequences"),
      property<&AGP::DB>("DB"),
      property<&AGP::DBCnt>("DBCnt"),
      property<&AGP::MenuList>("MenuList"),
      property<&AGP::Extensions>("Extensions"),
      property<&AGP::Language>("Language"),
      property<&AGP::customscripts>("customscripts"),
      method<&AGP::AddCustomScript>("AddCustomScript"),
      method<&AGP::UpdateCustomScript>("UpdateCustomScript"),
      method<&AGP::DeleteCustomScript>("DeleteCustomScript"),
      method<&AGP::LoadCodeBase>("LoadCodeBase"),
      method<&AGP::CodeBaseExist>("CodeBaseExist"),
      method<&AGP::LoadCustomScriptCode>("LoadCustomScriptCode"),
  };
  AddAttributeMembers<AGP>(table, *ProjectLayout(), {"ProjVar", "SyncLog"});
  return table;
}

}  // namespace

const MemberTable& AGP::members() const {
  static const MemberTable table = buildMembers();
  return table;
}

}  // namespace bw
