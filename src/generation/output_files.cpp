#include "generation/output_files.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "core/agp_vars.h"
#include "core/registry.h"
#include "core/status.h"
#include "platform/files.h"
#include "platform/host.h"

namespace bw {
namespace {

constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";

void reportFileError(const std::string& what, const std::string& path, const std::string& why) {
  AGPVarsData& vars = AGPVars();
  vars.host->showMessage("Error in " + what + " '" + path + "', error description: " + why,
                         vars.ProductName, MessageIcon::Critical);
}

bool utf8Output() {
  return ReadSetting("HKCU", AGPVars().RegGeneral, "UTF8Output").toBoolean().value_or(false);
}

}  // namespace

void WriteOutputFile(const std::string& path, const std::string& text, bool raw) {
  // On a case-sensitive file system a file that exists under `path` already
  // has the requested spelling; only its content is replaced.
  const std::filesystem::path target = files::nativePath(path);
  std::error_code ec;
  std::filesystem::remove(target, ec);
  if (ec) {
    reportFileError("creating file", path, ec.message());
    return;
  }
  const bool withBom = !raw && utf8Output();
  std::ofstream out(target, std::ios::binary | std::ios::trunc);
  if (!out) {
    reportFileError("creating file", path, std::generic_category().message(errno));
    return;
  }
  if (withBom) out << kUtf8Bom;
  out << text;
  out.flush();
  if (!out)
    reportFileError(withBom ? "writing utf8 data to file" : "writing text data to file", path,
                    std::generic_category().message(errno));
}

void StepProgress() {
  AGPVarsData& vars = AGPVars();
  ++vars.ProgressDone;
  const double percent =
      vars.ProgressTotal > 0 ? 100.0 * vars.ProgressDone / vars.ProgressTotal : 0.0;
  Status().SetStatus(Variant(percent));
}

}  // namespace bw
