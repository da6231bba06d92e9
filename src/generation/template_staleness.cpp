// Which controls must be composed again: a control's composed function is
// stale when a template file it is made of (its files, the files of its
// sessions, and what those include) changed after the function was written.
// File dates compare to the second, as the cache record keeps them.
#include <functional>
#include <unordered_set>

#include "core/agp_vars.h"
#include "core/generation_error.h"
#include "core/project.h"
#include "generation/generation.h"
#include "platform/files.h"
#include "platform/text.h"
#include "template/cache.h"
#include "template/controls.h"
#include "template/file_cache.h"
#include "template/sessions.h"
#include "template/template_folders.h"

namespace bw {
namespace {

// An include of a template file is read from the including file's own
// package first: an extension's file may include the template's.
std::string resolveIncludeFile(const std::string& name) {
  const AGPVarsData& vars = AGPVars();
  const std::string own = files::joinPath(vars.CurrentTemplateFolder, name);
  if (vars.CurrentTemplateFolder == vars.TemplateFolder || files::fileExists(own)) return own;
  return files::joinPath(vars.TemplateFolder, name);
}

}  // namespace

// Calls `visit(name, path)` for each template file of the control, in the
// order composition reads them; `path` may not exist. Includes are
// followed to any depth, each file once.
void Generation::forEachTemplateFile(AGPControl& ctrl, const TemplateFileVisitor& visit) {
  AGPVarsData& vars = AGPVars();
  std::unordered_set<std::string> seen;
  const std::string suffix = LanguageSuffix();
  std::function<void(const std::string&, const std::string&)> withIncludes =
      [&](const std::string& name, const std::string& path) {
        if (!seen.insert(path).second) return;
        visit(name, path);
        if (!files::fileExists(path)) return;
        const std::string includes = FindIncludes(files::readTextFile(path), suffix);
        if (includes.empty()) return;
        for (const std::string& include : text::split(includes, ","))
          withIncludes(include, resolveIncludeFile(include));
      };

  vars.CurrentTemplateFolder = TemplateFolderOf(ctrl.CtrlExt);
  if (!ctrl.CtrlIFiles.empty())
    for (const std::string& entry : text::split(ctrl.CtrlIFiles, ",")) {
      const std::string name(text::trimBlanks(entry));
      withIncludes(name, files::joinPath(vars.CurrentTemplateFolder, name));
    }
  for (const Ref<AGPSession>& session : ctrl.Sessions()->items()) {
    if (session->SessType != "key") continue;
    vars.CurrentTemplateFolder = TemplateFolderOf(session->SessExt);
    if (session->SessIFile.empty()) continue;
    std::string path = files::joinPath(vars.CurrentTemplateFolder, session->SessIFile);
    if (vars.CurrentTemplateFolder != vars.TemplateFolder && !files::fileExists(path))
      path = files::joinPath(vars.TemplateFolder, session->SessIFile);
    withIncludes(session->SessIFile, path);
  }
}

bool Generation::IsControlStale(AGPControl& ctrl) {
  AGPVarsData& vars = AGPVars();
  const auto missing = [&](const std::string& name) {
    vars.ProjErr = "Missing \"" + name + "\" in template folder \"" + vars.TemplateFolder +
                   "\". Generation aborted.";
    RaiseGenerationError();
  };
  ctrl.CtrlGen = false;
  vars.CurrentTemplateFolder = TemplateFolderOf(ctrl.CtrlExt);
  if (!ctrl.CtrlIFolder.empty() &&
      !files::folderExists(files::joinPath(vars.CurrentTemplateFolder, ctrl.CtrlIFolder)))
    missing(ctrl.CtrlIFolder);

  const std::string composed = CachedScriptPath(ctrl);
  const AGPCache* cache = RunCache();
  const Variant recorded = cache ? cache->GetCacheDate(Variant("tpl"), Variant(files::fileNameOf(composed)))
                                 : Variant::date(0.0);
  // No record reads as the zero date, which is no text.
  const bool hasRecord = recorded.isString() && files::fileExists(composed);
  const std::string composedAt = hasRecord ? recorded.toText() : std::string();
  if (!hasRecord) ctrl.CtrlGen = true;
  forEachTemplateFile(ctrl, [&](const std::string& name, const std::string& path) {
    if (!files::fileExists(path)) missing(name);
    if (FileDateText(path) > composedAt) ctrl.CtrlGen = true;
  });
  return ctrl.CtrlGen;
}

void Generation::LoadControlTemplates(AGPControl& ctrl) {
  forEachTemplateFile(ctrl, [](const std::string& name, const std::string& path) {
    if (files::fileExists(path)) FileCache().AddFile(path, name);
  });
}

}  // namespace bw
