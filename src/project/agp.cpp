#include "project/agp.h"

#include <pugixml.hpp>

#include "core/agp_vars.h"
#include "core/attribute_members.h"
#include "core/names.h"
#include "core/project_attributes.h"
#include "core/registry.h"
#include "core/status.h"
#include "extensions/extensions.h"
#include "language/phrase_store.h"
#include "persistence/defaults.h"
#include "persistence/machine_defaults.h"
#include "persistence/master_details.h"
#include "persistence/menus.h"
#include "persistence/project_reader.h"
#include "persistence/project_writer.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/xml.h"
#include "project/store_links.h"
#include "schema/load_db.h"
#include "template/code_base.h"
#include "template/composition.h"
#include "template/custom_scripts.h"

namespace bw {

// Construction. The interface language needs no setting here: the engine's
// messages are English on every platform.
AGP::AGP() : template_(*this) {
  AGPVarsData& vars = AGPVars();
  vars.definitionListener = std::make_shared<StoreLinks>();
  vars.ProductVersion = AppVersion().substr(0, AppVersion().rfind('.'));
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
  setProjInit(true);
}

// The stores of menus, phrases and extensions are emptied when the database
// is unloaded, not here; deleting the database takes its tables' entries.
void AGP::DeleteProj() {
  clear();
  setProjInit(false);
}

void AGP::LoadDefault() { bw::LoadDefault(*this); }
void AGP::SaveDefault() { bw::SaveDefault(*this); }

// Comparing with the live database (Sync with AutoSync) arrives with
// synchronization; a load never connects yet.
void AGP::Load(const std::string& projFile, bool /*Sync*/) { LoadProjectFile(*this, projFile); }
void AGP::Save(const std::string& projFile) { SaveProjectFile(*this, projFile); }
bool AGP::CheckSequences() { return bw::CheckSequences(*this); }

void AGP::LoadDB(const Variant& sDbName, const Variant& sDbType, const Variant& sPath,
                 const Variant& sPhyPath, const Variant& bDBUseServerMapPath, const Variant& sUID,
                 const Variant& sPwd, const Variant& sConnStr, const Variant& sSchema) {
  bw::LoadDB(*this, sDbName, sDbType, sPath, sPhyPath, bDBUseServerMapPath, sUID, sPwd, sConnStr,
             sSchema);
}

void AGP::LoadTable(const std::string& sTableName) { bw::LoadTable(*this, sTableName); }

Ref<Dispatch> AGP::MenuList() const { return refTo(&Menus()); }
Ref<Dispatch> AGP::Extensions() const { return refTo(&bw::Extensions()); }
Ref<Dispatch> AGP::Language() const { return refTo(&bw::Language()); }
Ref<Dispatch> AGP::customscripts() const { return refTo(&CustomScripts()); }
Ref<Dispatch> AGP::MasterDetails() const { return refTo(&bw::MasterDetails()); }
Ref<Dispatch> AGP::CodeBase() const { return refTo(&bw::CodeBase()); }

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
void AGP::BringToFront() { Status().BringStatusToFront(); }

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
  return bw::CodeBase().CodeSource(sScriptType, sCodeType, sName, sLanguage);
}

bool AGP::CodeBaseExist(const std::string& sScriptType, const std::string& sCodeType,
                        const std::string& sName, const std::string& sLanguage) {
  return bw::CodeBase().CodeExist(sScriptType, sCodeType, sName, sLanguage);
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
  bw::CodeBase().Load(Variant(file));
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
      method<&AGP::BringToFront>("BringToFront"),
      method<&AGP::LoadDB>("LoadDB"),
      method<&AGP::LoadTable>("LoadTable"),
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
      property<&AGP::MasterDetails>("MasterDetails"),
      property<&AGP::CodeBase>("CodeBase"),
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
