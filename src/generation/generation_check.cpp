// GenCheck: what the host asks before a run. It unpacks the template when
// its zip changed (asking first whether to keep the unpacked files), loads
// the control file, starts the script host and walks the pages in check
// mode: nothing is written, the generation choices are filled, and the
// count of output files that exist already comes back.
#include "core/agp_vars.h"
#include "core/generation_error.h"
#include "core/project.h"
#include "core/status.h"
#include "generation/generation.h"
#include "generation/template_package.h"
#include "persistence/master_details.h"
#include "platform/files.h"
#include "platform/host.h"
#include "template/cache.h"
#include "template/controls.h"
#include "template/project_template.h"
#include "template/script_host.h"

namespace bw {
namespace {

constexpr std::string_view kTemplateChanged =
    "Template version in zip file is different with that in the template folder. Do you want to "
    "keep the existing files in the template folder or extract and overwrite from the zip file?";

}  // namespace

std::int16_t Generation::GenCheck() {
  AGPVarsData& vars = AGPVars();
  vars.ProjErr.clear();
  if (!CreateRuntimeObjects()) return 0;
  if (!project_.DB()) {
    vars.ProjErr = ProductMessage(": Database not loaded! Generation aborted!");
    return 0;
  }
  vars.Destination = project_.attrText("Destination");
  openStatus(" - Preparing for generation...");
  std::int16_t existing = 0;
  try {
    if (unpackTemplate() && loadCheckedControls()) {
      ResetControlItems();
      vars.Cache = nullptr;
      if (vars.ProjErr.empty()) template_.LoadTemplateScripts();
      // A script error of validation or template scripts still lets the
      // walk fill the choices, but the check counts as failed.
      existing = GeneratePages(true);
      BuildControlItems();
      if (!vars.ProjErr.empty()) existing = 0;
    }
  } catch (const GenerationError&) {
    existing = 0;
  }
  dropRunObjects();
  return existing;
}

// Compares the template zip with the record of its last unpack, asks what
// to do about a changed one, and unpacks when needed. False with ProjErr
// set when the zip is gone.
bool Generation::unpackTemplate() {
  AGPVarsData& vars = AGPVars();
  const std::string templateFile = project_.attrText("Template");
  vars.TemplateName = files::fileNameOf(templateFile);
  vars.Cache = make<AGPCache>();
  vars.TemplateKept = false;
  // The cache folder follows the template's name; making it can fail.
  if (!vars.ProjErr.empty()) return false;
  const std::int16_t r = CheckFileCache("template", "template", templateFile);
  if (r < 0) {
    vars.ProjErr = ProductMessage(": Template file not found! Generation aborted!");
    return false;
  }
  vars.TemplateUnchanged = r == 0;
  if (r == 1) {
    const TemplateChoice choice = vars.host->chooseTemplateAction(kTemplateChanged, vars.ProductName);
    vars.TemplateUnchanged = choice == TemplateChoice::Keep;
    vars.TemplateKept = vars.TemplateUnchanged;
  }
  vars.TemplateFolder = PrepareTemplatePackage(templateFile, "Script", false, true, !vars.TemplateUnchanged);
  // With the files kept, the old record stays, so the question comes again.
  if (!vars.TemplateKept) {
    AddFileCache("template", "template", templateFile);
    RunCache()->WriteCacheFile();
  }
  if (!vars.TemplateUnchanged) {
    DeleteFilesByExtension(vars.CacheFolder, "tpl");
    RunCache()->DeleteCacheGroup(Variant("tpl"));
  }
  return true;
}

// The control file with the language resolved, and the script host over
// it, validated. False with ProjErr set when the control file is unusable;
// a validation error leaves ProjErr set but goes on.
bool Generation::loadCheckedControls() {
  AGPVarsData& vars = AGPVars();
  if (!controls_.LoadControls(Variant(files::joinPath(vars.TemplateFolder, "control.xml")))) {
    vars.ProjErr = ControlFileErrorMessage(vars.ExtensionLoadError);
    return false;
  }
  applyLanguageWildcard();
  MasterDetails().CheckSequence();
  if (createScriptHost()) GenerationScript()->Validate();
  openStatus(" - Preparing for generation...");
  return true;
}

}  // namespace bw
