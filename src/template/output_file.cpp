#include "template/output_file.h"

#include "core/agp_vars.h"
#include "core/registry.h"
#include "core/status.h"
#include "platform/files.h"
#include "platform/host.h"

namespace bw {
namespace {

constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";

}  // namespace

// The file is written under a temporary name and renamed into place, so a
// run that is stopped or killed never leaves a page cut short.
void WriteOutputFile(const std::string& path, const std::string& text, bool raw) {
  const bool withBom = !raw && GeneralFlag("UTF8Output");
  std::string error;
  const std::string bytes = withBom ? std::string(kUtf8Bom) + text : text;
  if (files::writeFileAtomic(path, bytes, &error, files::Durability::Unsynced)) return;
  AGPVarsData& vars = AGPVars();
  vars.host->showMessage("Error in " +
                             std::string(withBom ? "writing utf8 data to file" : "writing text data to file") +
                             " '" + path + "', error description: " + error,
                         vars.ProductName, MessageIcon::Critical);
}

void StepProgress() {
  AGPVarsData& vars = AGPVars();
  ++vars.ProgressDone;
  const double percent =
      vars.ProgressTotal > 0 ? 100.0 * vars.ProgressDone / vars.ProgressTotal : 0.0;
  Status().SetStatus(Variant(percent));
}

}  // namespace bw
