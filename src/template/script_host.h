// AGScript: the script host. The rest of the engine reaches script engines
// only through it.
//
// It owns three engines: ScriptMain holds system code, template scripts, user
// code and the composed functions, and produces all output; ScriptTest gets
// each piece of system code alone, so that a syntax error points at the file
// that holds it; ScriptValidate holds the validation modules and nothing
// else. Every engine error becomes one message in ProjErr (see
// CaptureScriptError); none leaves this class as an exception.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "core/dispatch.h"
#include "template/script_engine.h"

namespace bw {

class AGScript : public Dispatch {
 public:
  // Creates the three engines for AGPVars().ScriptLanguage. On failure
  // ProjErr says why and IsInitialized() is false.
  AGScript();
  ~AGScript() override;

  // Binds the objects that are not null, then loads system code, validation
  // code and user code. `langid` is the project's ProgramLanguage.
  void Initialize(Ref<Dispatch> proj, Ref<Dispatch> db, Ref<Dispatch> controls,
                  Ref<Dispatch> language, Ref<Dispatch> masterDetails,
                  Ref<Dispatch> customScripts, const Variant& langid, Ref<Dispatch> extensions,
                  Ref<Dispatch> menuList);

  std::string Language() const { return scriptLang_; }
  bool IsInitialized() const { return main_ != nullptr; }
  void Reset();

  void AddTemplateScript(const std::string& file);
  void AddUserCode(const std::string& file);
  bool ModuleExist(const Variant& module) const;
  bool UserModuleExist(const Variant& module) const { return ModuleExist(module); }
  bool Validate();
  Variant RunModule(const Variant& module);
  // Registers a composed function under `id` and runs it. `initType` 0 adds
  // the code on every call; 1 and 2 add it once per host.
  std::string BuildNewCode(const std::string& id, const std::string& script,
                           std::int16_t initType, std::int32_t timeout);

  // Text read from and written to script files (UTF-8; the byte order mark
  // is dropped). A missing file is reported in a message box and reads "".
  static std::string ScriptReadFile(const std::string& path);
  static void ScriptWriteFile(const std::string& path, const std::string& text);

  // Turns a template of system code into function statements.
  std::string ConvertSystemTemplate(const std::string& text, bool multiline, bool indent,
                                    const std::string& id);

  // The accumulated text of the profiler's StopProfiler calls, newest first.
  const std::string& profilerText() const { return profilerText_; }
  void setProfiling(bool on) { profiling_ = on; }

  const std::vector<std::string>& validateNames() const { return validateNames_; }

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGScript"; }

 private:
  friend class SystemCodeLoader;

  void CaptureScriptError(const ScriptEngine* engine, const std::string& file);
  void LoadSystemCode(const Variant& langid);
  void LoadValidationCode();
  void LoadUserCode();
  void addToMain(const std::string& code, const std::string& file);
  void collectValidationNames();

  std::unique_ptr<ScriptEngine> main_;
  std::unique_ptr<ScriptEngine> test_;
  std::unique_ptr<ScriptEngine> validate_;
  std::string scriptLang_;
  std::string outVar_ = "ztOut";
  std::string sysText_, sysPrefix_, sysSuffix_, validateText_, userText_;
  std::vector<std::string> validateNames_;
  std::unordered_set<std::string> codeList_;  // ids registered by BuildNewCode
  Variant lastResult_;
  bool profiling_ = false;
  std::string profilerText_;
};

// The shared hosts of AGPVars: the generation run's and ParseScript's.
AGScript* GenerationScript();
AGScript* ParseScriptHost();

// Probes the script host that a load or a run needs; false with ProjErr set
// when one cannot be made.
bool CreateRuntimeObjects();

}  // namespace bw
