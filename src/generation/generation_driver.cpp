// GenScript: one run of generation, from the template package to the site.
//
// The run brings the unpacked template, its cache record and the language
// files up to date, starts the script host, composes the controls whose
// templates changed since their composed function was written, and walks
// the pages. A stop before the walk leaves ProjErr set; a page that fails
// or a cancel raises GenerationError, which ends here with ProjErr set.
#include <filesystem>

#include "core/agp_vars.h"
#include "core/conversions.h"
#include "core/generation_error.h"
#include "core/project.h"
#include "core/registry.h"
#include "core/status.h"
#include "generation/generation.h"
#include "generation/script_objects.h"
#include "generation/template_package.h"
#include "language/phrase_store.h"
#include "persistence/master_details.h"
#include "persistence/project_load.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/host.h"
#include "platform/text.h"
#include "platform/xml.h"
#include "template/cache.h"
#include "template/code_base.h"
#include "template/controls.h"
#include "template/file_cache.h"
#include "template/project_template.h"
#include "template/script_host.h"

namespace bw {
namespace {

// Controls that are composed into functions; the others are folders,
// copies and system entries.
bool isComposed(const AGPControl& ctrl) {
  const std::string type = text::toLower(ctrl.CtrlType);
  return type != "copy" && type != "folder" && type != "system";
}

}  // namespace

Generation::Generation(Project& project, ProjectTemplate& projectTemplate)
    : project_(project), template_(projectTemplate), controls_(*projectTemplate.controls()) {}

void Generation::openStatus(const std::string& text) {
  AGPVars().StatusTitle = ProductMessage(text);
  Status().ShowStatus2(project_.hwnd(), AGPVars().StatusTitle);
  Status().DispStatus("Please wait...");
}

// A status with a bar and a cancel button, for the phases that show progress.
void Generation::openProgress(const std::string& text) {
  AGPVars().StatusTitle = ProductMessage(text);
  Status().ShowStatus3(project_.hwnd(), AGPVars().StatusTitle);
}

void Generation::GenScript() {
  AGPVarsData& vars = AGPVars();
  vars.ProjErr.clear();
  vars.GenerationStats = {};
  try {
    if (prepareRun()) {
      openStatus(" - Validating control.xml...");
      std::int32_t staleSessions = 0;
      for (const Ref<AGPControl>& ctrl : controls_.walk())
        if (isComposed(*ctrl) && IsControlStale(*ctrl))
          staleSessions += std::max<std::int32_t>(1, ctrl->Sessions()->Count());
      Status().CloseStatus();
      if (staleSessions > 0) composeStaleControls(staleSessions);
      openProgress(" - Generating " + vars.PlatformName.toText() + " Scripts...");
      PrepareOutputFolders();
      GeneratePages(false);
    }
  } catch (const GenerationError&) {
    // ProjErr holds the reason; the status display is closed.
  }
  dropRunObjects();
}

// Steps up to the script host, with its template scripts and validation.
// False when the run stops, with ProjErr set.
bool Generation::prepareRun() {
  AGPVarsData& vars = AGPVars();
  vars.Destination = project_.attrText("Destination");
  startProfiler();
  takeRelatedProjectVersion();
  SaveGenLists();
  if (!CreateRuntimeObjects()) return false;
  if (!project_.DB()) {
    vars.ProjErr = ProductMessage(": Database not loaded! Generation aborted!");
    return false;
  }
  if (project_.DB()->Tables()->Count() == 0) {
    vars.ProjErr = ProductMessage(": No tables found in the Database! Generation aborted!");
    return false;
  }
  if (!CheckUserLevelFieldSize()) return false;

  const std::string templateFile = project_.attrText("Template");
  vars.TemplateName = files::fileNameOf(templateFile);
  vars.Cache = make<AGPCache>();
  vars.TemplateFolder = PrepareTemplatePackage(templateFile, "Script", false, true, !vars.TemplateUnchanged);
  bool controlFileChanged = false;
  if (!checkControlFile(controlFileChanged) || !checkTemplateVersion()) return false;
  if (const std::string codeBase = GeneralSetting("CodeBase").toText(); files::fileExists(codeBase))
    CodeBase().Load(Variant(codeBase));
  if (!loadLanguageFiles()) return false;
  clearStaleCache(controlFileChanged);
  applyLanguageWildcard();
  MasterDetails().CheckSequence();
  if (!createScriptHost()) return false;
  template_.LoadTemplateScripts();
  if (!vars.ProjErr.empty()) return false;
  openStatus(" - Validating project settings...");
  GenerationScript()->Validate();
  Status().CloseStatus();
  return vars.ProjErr.empty();
}

void Generation::startProfiler() {
  AGPVarsData& vars = AGPVars();
  vars.ProfilerOn = text::iequals(GeneralSetting("ProfilerLog").toText(), "true");
  if (!vars.ProfilerOn) return;
  vars.ProfilerNote.clear();
  vars.ProfilerFile = EnsureSep(vars.Destination) + text::toLower(vars.ProductKey) + "_profiler.log";
  files::removeFile(vars.ProfilerFile);
}

// A report project related to this one decides the version its pages must
// stay compatible with.
void Generation::takeRelatedProjectVersion() {
  const std::string related = project_.attrText("AppRelatedProject");
  if (related.empty() || !files::fileExists(related)) return;
  pugi::xml_document doc;
  if (!xml::loadFile(doc, related)) return;
  const std::string version = doc.document_element().attribute("Version").value();
  if (!version.empty()) project_.setAppCompatVersion(Variant(version.substr(0, version.find('.'))));
}

bool Generation::checkControlFile(bool& changed) {
  AGPVarsData& vars = AGPVars();
  const std::string file = files::joinPath(vars.TemplateFolder, "control.xml");
  const std::int16_t r = CheckFileCache("control", "control", file);
  if (r < 0) {
    vars.ProjErr = ProductMessage(": control file not found! Generation aborted!");
    return false;
  }
  changed = r != 0;
  if (controls_.LoadControls(Variant(file))) return true;
  vars.ProjErr = ControlFileErrorMessage(vars.ExtensionLoadError);
  return false;
}

bool Generation::checkTemplateVersion() {
  AGPVarsData& vars = AGPVars();
  const std::string& version = controls_.ProdVersion();
  switch (CompareVersion(version, vars.TemplateVersion)) {
    case 2:
      vars.ProjErr = ProductMessage(": Template version (" + version + ") newer than software version (" +
                              project_.AppVersion() + ")! Generation aborted!");
      return false;
    case -1:
      vars.ProjErr = ProductMessage(": Template version (" + version + ") older than minimum required (" +
                              vars.TemplateVersion + ")! Generation aborted!");
      return false;
    default:
      return true;
  }
}

// Each language file of the project must load and be of this version. A
// file that does not load may be replaced by the default language file,
// which also ends the multi-language setting.
bool Generation::loadLanguageFiles() {
  AGPVarsData& vars = AGPVars();
  AGPLanguage& language = Language();
  language.ResetFiles();
  const bool multiLanguage = project_.attrBool("MultiLanguage");
  std::string list = project_.attrText(multiLanguage ? "LanguageFiles" : "DefaultLanguageFile");
  if (!list.empty()) {
    vars.LanguageFolder = GeneralSetting("LanguageFolder").toText();
    for (const std::string& raw : text::split(list, ",")) {
      const std::string entry = CleanString(Variant(raw));
      if (language.Load(files::joinPath(vars.LanguageFolder, entry))) {
        if (CompareVersion(project_.AppVersion(), vars.LanguageVersion) == 0) continue;
        vars.ProjErr = ProductMessage(": Language file '" + entry + "' version (" + vars.LanguageVersion +
                                ") not matched with the software version (" + project_.AppVersion() +
                                ")! Generation aborted!");
        return false;
      }
      if (!useDefaultLanguageFile(entry, list)) {
        vars.ProjErr = ProductMessage(" - Error in loading the language file '" + entry + "'. Generation aborted.");
        return false;
      }
    }
  }
  if (list.empty()) {
    vars.ProjErr = ProductMessage(": No language file specified in project! Generation aborted!");
    return false;
  }
  return true;
}

// Offers the project's default language file in place of `entry`; true
// when it loaded and the user took it, which becomes the list.
bool Generation::useDefaultLanguageFile(const std::string& entry, std::string& list) {
  AGPVarsData& vars = AGPVars();
  const std::string fallback = project_.attrText("DefaultLanguageFile");
  if (!Language().Load(files::joinPath(vars.LanguageFolder, fallback))) return false;
  std::string question = "Load language file '" + entry +
                         "' failed! Do you want to use the default language file to continue generation?";
  if (project_.attrBool("MultiLanguage")) question += " The multi-language setting will be reset.";
  if (vars.host->ask(question, vars.ProductName, MessageButtons::YesNo, MessageIcon::Question) !=
      MessageAnswer::Yes)
    return false;
  project_.setAttr("MultiLanguage", Variant(false));
  project_.setAttr("DefaultLanguageFile", Variant(fallback));
  list = fallback;
  return true;
}

// Composed functions are thrown away when what they were made from may
// have changed as a whole: another template zip or another control file.
void Generation::clearStaleCache(bool controlFileChanged) {
  AGPVarsData& vars = AGPVars();
  AGPCache& cache = *RunCache();
  if (!vars.TemplateUnchanged || controlFileChanged) {
    DeleteFilesByExtension(vars.CacheFolder, "tpl");
    cache.DeleteCacheGroup(Variant("tpl"));
  }
  if (controlFileChanged) AddFileCache("control", "control", files::joinPath(vars.TemplateFolder, "control.xml"));
}

// "*" in a control's file names stands for the project's language.
void Generation::applyLanguageWildcard() {
  const std::string suffix = LanguageSuffix();
  const auto resolve = [&](std::string& value) { value = text::replaceAll(value, "*", suffix); };
  for (const Ref<AGPControl>& ctrl : controls_.walk()) {
    resolve(ctrl->CtrlOExt);
    resolve(ctrl->CtrlIFiles);
    resolve(ctrl->CtrlTagExt);
    for (const Ref<AGPSession>& session : ctrl->Sessions()->items()) resolve(session->SessIFile);
  }
}

bool Generation::createScriptHost() {
  AGPVarsData& vars = AGPVars();
  openStatus(" - Initializing " + vars.ScriptLanguage + " Engine...");
  const auto makeHost = [&]() -> Ref<AGScript> {
    auto host = make<AGScript>();
    if (!host->IsInitialized()) return nullptr;
    BindProjectObjects(*host, project_, template_);
    return host;
  };
  vars.Script = makeHost();
  if (vars.Script && vars.ProjErr.empty() && !vars.ParseScriptHost) vars.ParseScriptHost = makeHost();
  Status().CloseStatus();
  if (!vars.Script || !vars.ParseScriptHost) {
    vars.Script = nullptr;
    vars.ParseScriptHost = nullptr;
    return false;
  }
  return vars.ProjErr.empty();
}

// Reads the templates of all composed controls into the file cache, then
// composes the stale ones into their "tpl" files.
void Generation::composeStaleControls(std::int32_t staleSessions) {
  AGPVarsData& vars = AGPVars();
  openStatus(" - Loading template...");
  FileCache().Clear();
  for (const Ref<AGPControl>& ctrl : controls_.walk())
    if (isComposed(*ctrl)) LoadControlTemplates(*ctrl);
  Status().CloseStatus();

  openProgress(" - Creating Cache Files...");
  vars.ProgressTotal = staleSessions;
  vars.ProgressDone = 0;
  for (const Ref<AGPControl>& ctrl : controls_.walk()) {
    if (!isComposed(*ctrl)) continue;
    if (Status().StatusIsCancelled()) CancelGeneration();
    if (!ctrl->CtrlGen) continue;
    const std::string label = ctrl->CtrlID + (ctrl->CtrlTagExt.empty() ? "" : "(" + ctrl->CtrlTagExt + ")");
    Status().DispStatus("Loading " + label + " script...");
    const std::int64_t start = clock::tickCount();
    template_.ComposeControl(*ctrl, CachedScriptPath(*ctrl));
    vars.GenerationStats.composeMs += clock::tickCount() - start;
    ++vars.GenerationStats.composed;
  }
  Status().CloseStatus();
  recordComposedFiles();
}

void Generation::recordComposedFiles() {
  AGPVarsData& vars = AGPVars();
  std::error_code ec;
  for (const auto& entry : std::filesystem::directory_iterator(files::nativePath(vars.CacheFolder), ec)) {
    if (!entry.is_regular_file(ec)) continue;
    const std::string name = entry.path().filename().string();
    const std::size_t dot = name.rfind('.');
    if (dot != std::string::npos && name.substr(dot + 1) == "xml") continue;
    AddFileCache("tpl", name, files::joinPath(vars.CacheFolder, name));
  }
  RunCache()->WriteCacheFile();
}

void Generation::dropRunObjects() {
  AGPVarsData& vars = AGPVars();
  Status().CloseStatus();
  vars.Cache = nullptr;
  for (Ref<Dispatch>* host : {&vars.Script, &vars.ParseScriptHost}) {
    if (*host) static_cast<AGScript&>(**host).Reset();
    *host = nullptr;
  }
  project_.setCurrentTable(nullptr);
}

}  // namespace bw
