#include "template/duktape_engine.h"

#include <algorithm>
#include <charconv>
#include <exception>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/text.h"
#include "template/duktape_heap.h"
#include "template/duktape_runtime.h"
#include "template/duktape_values.h"
#include "template/script_engine.h"

namespace bw {
namespace {

constexpr std::string_view kLanguage = "JScript";
constexpr const char* kCompilationSource = "JScript compilation error";
constexpr const char* kRuntimeSource = "JScript runtime error";
// Duktape blames an error on the innermost function that has a file name,
// so code given to addCode has one and the runtime has none.
constexpr std::string_view kCodeFileName = "code";

std::int32_t numberOfKind(std::string_view errorName) {
  static constexpr std::pair<std::string_view, std::int32_t> kinds[] = {
      {"SyntaxError", script_error::kSyntax},       {"TypeError", script_error::kTypeError},
      {"ReferenceError", script_error::kUndefined}, {"RangeError", script_error::kRangeError},
      {"URIError", script_error::kUriError},
  };
  for (const auto& [name, number] : kinds)
    if (name == errorName) return number;
  return script_error::kUncaught;
}

// Where the compiler found a syntax error. Our build has it end its messages
// with " (line N, offset B)" or " (line N, end of input, offset B)", B being
// the byte offset of the token in the code.
struct SyntaxErrorPlace {
  std::string_view description;  // the message without that suffix
  std::int32_t line = 0;
  std::int32_t column = 0;  // in characters, 1-based; 0 if unknown
};

SyntaxErrorPlace syntaxErrorPlace(std::string_view message, std::string_view code) {
  SyntaxErrorPlace place{message};
  const std::size_t suffix = message.rfind(" (line ");
  if (suffix == std::string_view::npos || !message.ends_with(')')) return place;
  place.description = message.substr(0, suffix);
  std::string_view rest = message.substr(suffix + 7);
  std::from_chars(rest.data(), rest.data() + rest.size(), place.line);
  const std::size_t offsetAt = rest.rfind("offset ");
  if (offsetAt == std::string_view::npos) return place;
  std::size_t offset = 0;
  std::from_chars(rest.data() + offsetAt + 7, rest.data() + rest.size(), offset);
  offset = std::min(offset, code.size());
  const std::size_t lineStart = code.rfind('\n', offset == 0 ? 0 : offset - 1);
  const std::size_t from = lineStart == std::string_view::npos || offset == 0 ? 0 : lineStart + 1;
  place.column = static_cast<std::int32_t>(text::countChars(code.substr(from, offset - from))) + 1;
  return place;
}

// Line `line` (1-based) of `code`, without its line end.
std::string sourceLine(std::string_view code, std::int32_t line) {
  std::size_t start = 0;
  for (std::int32_t k = 1; k < line && start != std::string_view::npos; ++k) {
    start = code.find('\n', start);
    if (start != std::string_view::npos) ++start;
  }
  if (line < 1 || start == std::string_view::npos) return {};
  std::string_view text = code.substr(start, code.find('\n', start) - start);
  if (text.ends_with('\r')) text.remove_suffix(1);
  return std::string(text);
}
// Protected bodies. They run C only, no C++ objects, as Duktape may longjmp
// out of them.

// [ program ] -> [ result ]
duk_ret_t runProgram(duk_context* ctx, void*) {
  duk_call(ctx, 0);
  return 1;
}

// [ name args... ] -> [ result ]: calls the global function `name`.
duk_ret_t callGlobal(duk_context* ctx, void*) {
  const duk_idx_t argc = duk_get_top(ctx) - 1;
  /* [ name args... ] -> [ name args... function ] */
  duk_push_global_object(ctx);
  duk_dup(ctx, 0);
  duk_get_prop(ctx, -2);
  duk_remove(ctx, -2);
  if (!duk_is_callable(ctx, -1)) {
    const bool undefined = duk_is_undefined(ctx, -1);
    duk_push_error_object_raw(
        ctx, undefined ? DUK_ERR_REFERENCE_ERROR : DUK_ERR_TYPE_ERROR, nullptr, 0,
        undefined ? "'%s' is undefined" : "'%s' is not a function", duk_get_string(ctx, 0));
    return duk_throw(ctx);
  }
  /* [ name args... function ] -> [ name function args... ] -> [ name result ] */
  duk_insert(ctx, 1);
  duk_call(ctx, argc);
  return 1;
}

// [ value ] -> [ undefined ], with `name` a string_view.
duk_ret_t bindGlobal(duk_context* ctx, void* name) {
  duk::defineGlobal(ctx, *static_cast<std::string_view*>(name));
  return 0;
}

class DuktapeEngine final : public ScriptEngine {
 public:
  DuktapeEngine() : heap_(std::make_unique<duk::DukHeap>()) {}

  bool setLanguage(std::string_view language) override;
  const std::string& language() const override { return language_; }
  void reset() override;
  void addObject(std::string_view name, Ref<Dispatch> object) override;
  bool addCode(std::string_view code) override;
  bool run(std::string_view procedure, Args args, Variant& result) override;
  void setTimeout(std::int32_t milliseconds) override { timeout_ = milliseconds; }
  std::vector<std::string> procedures() const override;
  const ScriptError& error() const override { return error_; }

 private:
  enum class Phase { Compilation, Runtime };

  // Runs `body` over the `nargs` values on top, under the deadline.
  // [ ... args ] -> [ ... result|error ]
  bool execute(duk_safe_call_function body, duk_idx_t nargs);
  // error() from the value thrown, on top of the stack; false.
  bool fail(Phase phase, std::string_view code = {});
  bool fail(std::int32_t number, std::string description);

  std::string language_ = std::string(kLanguage);
  std::unique_ptr<duk::DukHeap> heap_;
  std::int32_t timeout_ = 0;
  ScriptError error_;
};

}  // namespace

bool DuktapeEngine::setLanguage(std::string_view language) {
  error_ = {};
  if (language != kLanguage) {
    const std::string why =
        "Script language '" + std::string(language) + "' is not supported: only JScript can run";
    return fail(script_error::kUnsupportedLanguage, why);
  }
  language_ = language;
  return true;
}

void DuktapeEngine::reset() {
  error_ = {};
  heap_.reset();  // the old heap goes first, so that two never coexist
  heap_ = std::make_unique<duk::DukHeap>();
}

void DuktapeEngine::addObject(std::string_view name, Ref<Dispatch> object) {
  error_ = {};
  duk_context* ctx = heap_->context();
  duk::StackScope scope(ctx);
  /* [ ] -> [ proxy|null ] -> [ undefined|error ]; protected, since a script
     may have frozen the global object */
  duk::pushValue(ctx, Variant(std::move(object)));
  if (duk_safe_call(ctx, bindGlobal, &name, 1, 1) != DUK_EXEC_SUCCESS) fail(Phase::Runtime);
}

bool DuktapeEngine::addCode(std::string_view code) {
  error_ = {};
  duk_context* ctx = heap_->context();
  duk::StackScope scope(ctx);
  /* [ ] -> [ fileName ] -> [ program|error ] */
  duk_push_lstring(ctx, kCodeFileName.data(), kCodeFileName.size());
  if (duk_pcompile_lstring_filename(ctx, 0, code.data(), code.size()) != DUK_EXEC_SUCCESS)
    return fail(Phase::Compilation, code);
  /* [ program ] -> [ result|error ] */
  return execute(runProgram, 1);
}

bool DuktapeEngine::run(std::string_view procedure, Args args, Variant& result) {
  error_ = {};
  result = Variant();
  duk_context* ctx = heap_->context();
  duk::StackScope scope(ctx);
  try {
    /* [ ] -> [ name args... ] -> [ result|error ] */
    duk_push_lstring(ctx, procedure.data(), procedure.size());
    for (const Variant& arg : args) duk::pushValue(ctx, arg);
    if (!execute(callGlobal, static_cast<duk_idx_t>(args.size()) + 1)) return false;
    result = duk::valueAt(ctx, -1);
    return true;
  } catch (const AutomationError& e) {
    return fail(e.number(), e.description());
  } catch (const std::exception& e) {
    return fail(script_error::kUncaught, e.what());
  }
}

std::vector<std::string> DuktapeEngine::procedures() const {
  return duk::procedureNames(heap_->context());
}

bool DuktapeEngine::execute(duk_safe_call_function body, duk_idx_t nargs) {
  bool timedOut = false;
  {
    duk::DeadlineScope deadline(*heap_, timeout_);
    if (duk_safe_call(heap_->context(), body, nullptr, nargs, 1) == DUK_EXEC_SUCCESS) return true;
    timedOut = deadline.reached();
  }
  fail(Phase::Runtime);
  if (timedOut) {
    error_.number = script_error::kTimeout;
    error_.description = "Script execution timed out after " + std::to_string(timeout_) + " ms";
  }
  return false;
}

bool DuktapeEngine::fail(Phase phase, std::string_view code) {
  /* [ ... thrown ] -> [ ... thrown ] */
  const duk::ThrownValue thrown = duk::describeThrown(heap_->context(), -1);
  error_ = ScriptError{
      .source = kRuntimeSource,
      .number = thrown.number.value_or(numberOfKind(thrown.name)),
      .line = thrown.line,
      .column = 0,
      .description = thrown.description,
      .text = {},
  };
  if (phase == Phase::Compilation) {
    const SyntaxErrorPlace place = syntaxErrorPlace(thrown.description, code);
    error_.source = kCompilationSource;
    error_.line = place.line;
    error_.column = place.column;
    error_.description = place.description;
    error_.text = sourceLine(code, place.line);
  }
  return false;
}

bool DuktapeEngine::fail(std::int32_t number, std::string description) {
  error_ = ScriptError{};
  error_.source = kRuntimeSource;
  error_.number = number;
  error_.description = std::move(description);
  return false;
}

std::unique_ptr<ScriptEngine> CreateScriptEngine() {
  return std::make_unique<DuktapeEngine>();
}

}  // namespace bw
