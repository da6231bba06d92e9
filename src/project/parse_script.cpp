// AGP::ParseScript: the shortest road from a string of template language
// through composition and the script host back to a string.
#include "core/agp_vars.h"
#include "core/registry.h"
#include "generation/script_objects.h"
#include "platform/files.h"
#include "platform/text.h"
#include "project/agp.h"
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

std::string AGP::ParseScript(const std::string& str) {
  AGPVarsData& vars = AGPVars();
  const bool ownsHost = !vars.ParseScriptHost;
  if (ownsHost) {
    auto host = make<AGScript>();
    vars.ParseScriptHost = host;
    // Bound as for a generation run, so that a template behaves the same here.
    BindProjectObjects(*host, *this, projectTemplate());
    if (!host->IsInitialized()) {
      writeParseError("Script object not initialised" + std::string(text::kCrLf) + str);
      vars.ParseScriptHost = {};
      return str;
    }
  }
  AGScript& host = *ParseScriptHost();

  Composer& compose = projectTemplate().composer();
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
