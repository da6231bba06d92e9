#include "core/agp_vars.h"

#include "core/definition_listener.h"
#include "core/dispatch.h"
#include "platform/host.h"
#include "platform/progress_sink.h"

namespace bw {
namespace {

std::unique_ptr<AGPVarsData>& instance() {
  static std::unique_ptr<AGPVarsData> vars = std::make_unique<AGPVarsData>();
  return vars;
}

std::string versionText() {
  return std::to_string(BRINDLEWORK_VERSION_MAJOR) + "." + std::to_string(BRINDLEWORK_VERSION_MINOR);
}

}  // namespace

AGPVarsData::AGPVarsData()
    : ProductVersion(versionText()),
      ProjectVersion(ProductVersion),
      TemplateVersion(ProductVersion),
      definitionListener(std::make_shared<DefinitionListener>()),
      host(std::make_shared<RecordingHost>()),
      progress(std::make_shared<SilentProgressSink>()) {
  BuildSettingsPaths(*this);
}

AGPVarsData::~AGPVarsData() = default;

AGPVarsData& AGPVars() { return *instance(); }

void ResetAGPVars() {
  // Build the new state before dropping the old one, so that objects
  // released by the old state's destructor see a valid AGPVars().
  auto fresh = std::make_unique<AGPVarsData>();
  std::swap(instance(), fresh);
}

std::string AppVersionText() {
  return versionText() + "." + std::to_string(BRINDLEWORK_VERSION_PATCH);
}

std::string ProductKeyWord() {
  std::string out;
  for (char c : AGPVars().ProductKey)
    if (c != ' ' && c != '/') out += c;
  return out;
}

std::string SettingsRoot() {
  const AGPVarsData& v = AGPVars();
  return "Software\\" + v.ProductKey + "\\" + v.ProductVersion + "\\Settings";
}

void BuildSettingsPaths(AGPVarsData& v) {
  const std::string product = "Software\\" + v.ProductKey + "\\" + v.ProductVersion;
  const std::string root = product + "\\Settings";
  v.RegGeneral = root + "\\General";
  v.RegProject = root + "\\Project";
  v.RegDatabase = root + "\\Database";
  v.RegTable = root + "\\Table";
  v.RegField = root + "\\Field";
  v.RegChart = root + "\\Chart";
  v.RegTrendline = root + "\\Trendline";
  v.RegFilters = product + "\\AdvancedFilters";
  v.RegExtensions = product + "\\Extensions";
  v.ODBCIni = "Software\\ODBC\\ODBC.INI";
  v.ODBCInstIni = "Software\\ODBC\\ODBCINST.INI";
}

std::string ProductMessage(std::string_view text) { return AGPVars().ProductName + std::string(text); }

}  // namespace bw
