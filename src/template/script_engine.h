// ScriptEngine: what the script host needs of an engine that runs script
// text, and nothing more.
//
// The host (AGScript) creates engines, binds automation objects to names,
// adds code, runs global procedures and reads back the last error. Only
// JScript is run; an engine asked for another language refuses it, and
// composition still emits the other language's text.
//
// Engines never throw: each operation reports failure by its result and
// leaves the details in error().
//
//   auto engine = CreateScriptEngine();
//   engine->setLanguage("JScript");
//   engine->addObject("PROJ", project);
//   if (!engine->addCode("function f() { return PROJ.ProjName; }")) report(engine->error());
//   Variant result;
//   if (!engine->run("f", {}, result)) report(engine->error());
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/dispatch.h"

namespace bw {

struct ScriptError {
  std::string source;       // "JScript compilation error", "JScript runtime error", ...
  std::int32_t number = 0;  // the error's number; the host prints it in hexadecimal
  std::int32_t line = 0;    // 1-based, within the text given to addCode; 0 if unknown
  std::int32_t column = 0;  // 1-based; 0 if unknown
  std::string description;  // the message
  std::string text;         // the source line of a compilation error, else ""
};

class ScriptEngine {
 public:
  virtual ~ScriptEngine() = default;

  // Takes the language of all later code. False, with error() telling why,
  // for a language this engine cannot run.
  virtual bool setLanguage(std::string_view language) = 0;
  virtual const std::string& language() const = 0;

  // Drops all code, globals and bound objects.
  virtual void reset() = 0;

  // Binds an object to a global name; its members are not made global.
  virtual void addObject(std::string_view name, Ref<Dispatch> object) = 0;

  // Parses and runs the text at global level; functions stay defined.
  virtual bool addCode(std::string_view code) = 0;

  // Calls a global procedure with arguments and gives its result.
  virtual bool run(std::string_view procedure, Args args, Variant& result) = 0;

  // Limit for one addCode or run, in milliseconds; 0 or less: no limit.
  virtual void setTimeout(std::int32_t milliseconds) = 0;

  // Names of the global functions, in the order they were defined.
  virtual std::vector<std::string> procedures() const = 0;

  virtual const ScriptError& error() const = 0;
};

// An engine of the build (Duktape).
std::unique_ptr<ScriptEngine> CreateScriptEngine();

}  // namespace bw
