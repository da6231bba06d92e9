#include "template/script_host.h"

#include <cstdio>

#include "core/agp_vars.h"
#include "core/registry.h"
#include "platform/files.h"
#include "platform/host.h"
#include "platform/text.h"

namespace bw {
namespace {

std::string generalSetting(const char* name) {
  return ReadSetting("HKCU", AGPVars().RegGeneral, name).toText();
}

std::string upperHex(std::int32_t number) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "%X", static_cast<unsigned>(number));
  return buf;
}

}  // namespace

AGScript::AGScript() : scriptLang_(AGPVars().ScriptLanguage) {
  main_ = CreateScriptEngine();
  test_ = CreateScriptEngine();
  validate_ = CreateScriptEngine();
  for (auto* engine : {main_.get(), test_.get(), validate_.get()}) {
    if (!engine->setLanguage(scriptLang_)) {
      AGPVars().ProjErr = "Initialize Script Engine failed. Error: " + engine->error().description;
      main_.reset();
      return;
    }
    engine->reset();
    // Until a caller sets its own limit, no script may run for ever.
    engine->setTimeout(AGPVars().ScriptEngineTimeout);
  }
}

AGScript::~AGScript() = default;

void AGScript::Reset() {
  if (!main_) return;
  for (auto* engine : {main_.get(), test_.get(), validate_.get()}) engine->reset();
}

void AGScript::Initialize(Ref<Dispatch> proj, Ref<Dispatch> db, Ref<Dispatch> controls,
                          Ref<Dispatch> language, Ref<Dispatch> masterDetails,
                          Ref<Dispatch> customScripts, const Variant& langid,
                          Ref<Dispatch> extensions, Ref<Dispatch> menuList) {
  if (!main_) return;
  Reset();
  codeList_.clear();
  const std::pair<const char*, Ref<Dispatch>> bound[] = {
      {"PROJ", proj},       {"DB", db},
      {"CONTROLS", controls}, {"LANGUAGE", language},
      {"EXTS", extensions}, {"MENULIST", menuList},
      {"MASTERDETAILS", masterDetails}, {"CUSTOMSCRIPTS", customScripts},
  };
  for (const auto& [name, object] : bound) {
    if (!object) continue;
    for (auto* engine : {main_.get(), test_.get(), validate_.get()})
      engine->addObject(name, object);
  }
  LoadSystemCode(langid);
  if (AGPVars().ProjErr.empty()) LoadValidationCode();
  if (AGPVars().ProjErr.empty()) LoadUserCode();
}

std::string AGScript::ScriptReadFile(const std::string& path) {
  if (!files::fileExists(path)) {
    AGPVars().host->showMessage(
        ProductMessage(": Script file " + path + " not found! Content not loaded!"),
        AGPVars().ProductName, MessageIcon::Warning);
    return {};
  }
  return files::readTextFile(path);
}

void AGScript::ScriptWriteFile(const std::string& path, const std::string& text) {
  files::writeFileAtomic(path, text);
}

void AGScript::addToMain(const std::string& code, const std::string& file) {
  if (!main_->addCode(code)) CaptureScriptError(main_.get(), file);
}

void AGScript::AddTemplateScript(const std::string& file) {
  if (main_) addToMain(ScriptReadFile(file), file);
}

void AGScript::AddUserCode(const std::string& file) {
  if (main_) addToMain(ScriptReadFile(file), file);
}

// The project's user code runs after the system code, so that it can use
// and change system functions.
void AGScript::LoadUserCode() {
  if (!main_) return;
  const std::string path = generalSetting("UserCode");
  if (!path.empty()) {
    userText_ = ScriptReadFile(path);
  } else {
    userText_ = scriptLang_ == "JScript" ? "// Please enter your script here\r\n"
                                         : "'Please enter your script here\r\n";
  }
  addToMain(userText_, path);
}

bool AGScript::ModuleExist(const Variant& module) const {
  if (!main_) return false;
  const std::string name = module.toText();
  for (const std::string& procedure : main_->procedures())
    if (text::iequals(procedure, name)) return true;
  return false;
}

Variant AGScript::RunModule(const Variant& module) {
  lastResult_ = Variant("");
  if (!main_ || !AGPVars().ProjErr.empty()) return lastResult_;
  Variant ignored;
  main_->run("zt_LoadCurrent", {}, ignored);  // brings the current table and field in
  Variant result;
  if (main_->run(module.toText(), {}, result))
    lastResult_ = result;
  else
    CaptureScriptError(main_.get(), module.toText());
  return lastResult_;
}

std::string AGScript::BuildNewCode(const std::string& id, const std::string& script,
                                   std::int16_t initType, std::int32_t timeout) {
  if (!main_) return script;
  const bool add = initType == 0 || !codeList_.count(id);
  main_->setTimeout(timeout);
  if (add) {
    codeList_.insert(id);
    if (!main_->addCode(script)) {
      CaptureScriptError(main_.get(), id);
      return {};
    }
  }
  const Variant idArg[] = {Variant(id)};
  Variant ignored;
  if (profiling_) main_->run("StartProfiler", idArg, ignored);
  Variant result;
  if (!main_->run(id, {}, result)) {
    CaptureScriptError(main_.get(), id);
    return {};
  }
  if (profiling_) {
    Variant report;
    if (main_->run("StopProfiler", idArg, report)) profilerText_.insert(0, report.toText());
  }
  return result.toText();
}

bool AGScript::Validate() {
  AGPVarsData& vars = AGPVars();
  vars.Trace.clear();
  if (!validate_ || !main_ || !vars.ProjErr.empty()) return false;
  bool passed = true;
  for (const std::string& name : validateNames_) {
    Variant result;
    if (!validate_->run(name, {}, result)) {
      CaptureScriptError(validate_.get(), name);
      passed = false;
      break;
    }
    if (!result.toBoolean().value_or(false)) {
      if (vars.ProjErr.empty())
        vars.ProjErr = ProductMessage(": Validation module (" + name + ") failed");
      passed = false;
      break;
    }
  }
  // Without an output folder the trace has no place: a bare file name would
  // land in whatever folder the hosting program runs in.
  if (text::toLower(generalSetting("VALIDATETRACE")) == "true" && !vars.Trace.empty() &&
      !vars.Destination.empty())
    ScriptWriteFile(files::joinPath(vars.Destination, "validate.trace"), vars.Trace);
  return passed;
}

void AGScript::CaptureScriptError(const ScriptEngine* engine, const std::string& file) {
  if (!engine) return;
  const ScriptError& e = engine->error();
  std::string message = AGPVars().ProductName;
  if (!file.empty()) message += " (" + file.substr(file.rfind('\\') + 1) + ")";
  message += ": " + e.source + " (" + upperHex(e.number) + ")";
  if (e.line != 0) message += ", line " + std::to_string(e.line);
  if (e.column != 0) message += ", column " + std::to_string(e.column);
  message += text::kCrLf;
  if (!e.description.empty()) message += "Description: " + e.description + std::string(text::kCrLf);
  if (!e.text.empty()) message += "Text: " + e.text;
  AGPVars().ProjErr = message;
}

void AGScript::collectValidationNames() {
  for (const std::string& name : validate_->procedures()) validateNames_.push_back(name);
}

const MemberTable& AGScript::members() const {
  static const MemberTable table{
      method<&AGScript::Language>("Language"),
      method<&AGScript::IsInitialized>("IsInitialized"),
      method<&AGScript::Reset>("Reset"),
      method<&AGScript::AddTemplateScript>("AddTemplateScript"),
      method<&AGScript::AddUserCode>("AddUserCode"),
      method<&AGScript::ModuleExist>("ModuleExist"),
      method<&AGScript::UserModuleExist>("UserModuleExist"),
      method<&AGScript::Validate>("Validate"),
      method<&AGScript::RunModule>("RunModule"),
      method<&AGScript::BuildNewCode>("BuildNewCode"),
  };
  return table;
}

AGScript* GenerationScript() { return static_cast<AGScript*>(AGPVars().Script.get()); }
AGScript* ParseScriptHost() { return static_cast<AGScript*>(AGPVars().ParseScriptHost.get()); }

// A project is useless without its script host: a ScriptEngine setting that
// names an engine we cannot run stops a load or a run before it begins.
// Files and XML need no probe here: they are part of the engine itself.
bool CreateRuntimeObjects() {
  AGPVarsData& vars = AGPVars();
  vars.ProjErr.clear();
  { auto probe = make<AGScript>(); }
  return vars.ProjErr.empty();
}

}  // namespace bw
