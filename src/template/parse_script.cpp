// AGP::ParseScript: the shortest road from a string of template language
// through composition and the script host back to a string.
#include "core/agp.h"
#include "core/agp_vars.h"
#include "core/registry.h"
#include "persistence/master_details.h"
#include "platform/files.h"
#include "platform/text.h"
#include "template/composition.h"
#include "template/script_host.h"

namespace bw {
namespace {

void writeParseError(const std::string& textOut) {
  const std::string& destination = AGPVars().Destination;
  if (destination.empty()) return;  // no output folder to put the report in
  AGScript::ScriptWriteFile(files::joinPath(destination, "parseerror.txt"), textOut);
}

}  // namespace

Composer& AGP::composer() {
  if (!composer_ || composer_->language() != AGPVars().ScriptLanguage)
    composer_ = std::make_unique<Composer>(AGPVars().ScriptLanguage);
  return *composer_;
}

std::string AGP::ParseScript(const std::string& str) {
  AGPVarsData& vars = AGPVars();
  const bool ownsHost = !vars.ParseScriptHost;
  if (ownsHost) {
    auto host = make<AGScript>();
    vars.ParseScriptHost = host;
    // Bound as for a generation run, so that a template behaves the same here.
    host->Initialize(refTo(this), DB(), ControlList(), Language(), refTo(&MasterDetails()),
                     customscripts(), attr("ProgramLanguage"), Extensions(), MenuList());
    if (!host->IsInitialized()) {
      writeParseError("Script object not initialised" + std::string(text::kCrLf) + str);
      vars.ParseScriptHost = {};
      return str;
    }
  }
  AGScript& host = *ParseScriptHost();

  Composer& compose = composer();
  compose.reset();
  compose.composeBlocks(str);
  if (!vars.ProjErr.empty()) {
    writeParseError("Parse script error: " + vars.ProjErr + std::string(text::kCrLf) + str);
    if (ownsHost) vars.ParseScriptHost = {};
    return str;
  }
  const std::string code = compose.functionText("ztExParse", FunctionForm::ParseScript, false);
  const std::int32_t timeout =
      GeneralSetting("ScriptEngineTimeout").toLong().value_or(0);
  std::string result = host.BuildNewCode("ztExParse", code, 0, timeout);
  if (!vars.ProjErr.empty())
    writeParseError("Parse script run error: " + vars.ProjErr + std::string(text::kCrLf) + code +
                    std::string(text::kCrLf) + result);
  if (ownsHost) {
    host.Reset();
    vars.ParseScriptHost = {};
  }
  return result;
}

}  // namespace bw
