// Names and places of generated files.
#include "core/agp_vars.h"
#include "core/project.h"
#include "core/tables.h"
#include "generation/generation.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/text.h"
#include "template/controls.h"

namespace bw {
namespace {

bool endsWithSeparator(std::string_view path) {
  return !path.empty() && (path.back() == '\\' || path.back() == '/');
}

// A value that is exactly "*" is the project's language suffix.
std::string resolveLanguageExt(const std::string& ext, const std::string& suffix) {
  return ext == "*" ? suffix : ext;
}

}  // namespace

std::string EnsureSep(std::string_view path) {
  std::string out(text::trimBlanks(path));
  if (!out.empty() && !endsWithSeparator(out)) out += '\\';
  return out;
}

void MakeFolder(const std::string& path) {
  if (!path.empty()) files::createFolders(path);
}

std::string ComposeName(const std::string& baseName, const std::string& parm,
                        const std::string& core, const std::string& kind,
                        const std::string& affix, bool lower) {
  const std::string n = parm.empty() ? baseName : baseName + "_" + parm;
  const std::string how = text::toLower(kind);
  std::string name;
  if (how == "prefix")
    name = affix + n + core;
  else if (how == "infix")
    name = n.empty() ? core : n + affix + core;
  else if (how == "suffix")
    name = n + core + affix;
  else
    name = n + core;
  return lower ? text::toLower(name) : name;
}

// "<!--##include file/session##-->": the mark is 13 characters long, so the
// name starts at its 14th.
std::string FindIncludes(std::string_view text, std::string_view languageSuffix) {
  constexpr std::string_view kMark = "<!--##include";
  constexpr std::string_view kEnd = "##-->";
  std::vector<std::string> found;
  for (std::size_t at = text::ifindAscii(text, kMark); at != std::string_view::npos;) {
    const std::size_t start = at + kMark.size();
    const std::size_t end = text.find(kEnd, start);
    if (end == std::string_view::npos) {
      at = text::ifindAscii(text, kMark, start);
      continue;
    }
    std::string_view inner = text.substr(start, end - start);
    const std::size_t slash = inner.rfind('/');
    if (slash != std::string_view::npos) inner = inner.substr(0, slash);
    found.emplace_back(text::trimBlanks(inner));
    at = text::ifindAscii(text, kMark, end + kEnd.size());
  }
  return text::replaceAll(text::join(found, ","), "*", languageSuffix);
}

std::string FileDateText(const std::string& path) {
  const std::optional<std::tm> time = files::lastWriteTime(path);
  return time ? clock::sortableDateTime(*time) : std::string();
}

std::string Generation::LanguageSuffix() {
  return project_.attrText("ProgramLanguage") == "C#" ? "cs" : "vb";
}

std::string Generation::CachedScriptPath(const AGPControl& ctrl) {
  return files::joinPath(AGPVars().CacheFolder, LanguageSuffix() + "_" + ctrl.CtrlID +
                                                    ctrl.CtrlTagExt + "_" +
                                                    text::toLower(ctrl.CtrlType) + ".tpl");
}

std::string Generation::ComposeOutputName(const std::string& baseName, const std::string& parm,
                                          const std::string& core) {
  return ComposeName(baseName, parm, core, project_.attrText("OutputNameType"),
                     project_.attrText("OutputNameExt"), project_.attrBool("OutputNameLCase"));
}

std::string Generation::OutputFileName(const AGPControl& ctrl, const std::string& baseName,
                                       const std::string& parm) {
  const bool lower = project_.attrBool("OutputNameLCase");
  const std::string type = text::toLower(ctrl.CtrlType);
  std::string file = ctrl.CtrlOFile;
  std::string ext = resolveLanguageExt(ctrl.CtrlOExt, LanguageSuffix());
  std::string name;
  if (type == "copy") {
    if (ctrl.CtrlOFile.empty()) name = ctrl.CtrlIFiles.empty() ? ctrl.CtrlID : ctrl.CtrlIFiles;
  } else if (type == "other") {
    file = ComposeOutputName("", "", file);
  } else if ((type == "table" || type == "report") && ctrl.CtrlID != "custom") {
    file = ComposeOutputName(baseName, "", file);
  } else if (type == "table" || type == "report") {
    AGPTable* table = project_.currentTable().get();
    const std::string tableName = table ? table->TblName() : std::string();
    name = lower ? text::toLower(tableName) : tableName;
    if (!ctrl.CtrlTagExt.empty() && table) {
      const std::string var = table->attrText("TblVar");
      name = (lower ? text::toLower(var) : var) + "." + ext;
    }
  } else if (type == "field") {
    file = ComposeOutputName(baseName, parm, file);
  }
  if (!name.empty()) return name;
  if (lower) {
    file = text::toLower(file);
    ext = text::toLower(ext);
  }
  return ext.empty() ? file : file + "." + ext;
}

std::string Generation::FolderById(const std::string& folderId) {
  for (const Ref<AGPControl>& ctrl : controls_.walk())
    if (text::toLower(ctrl->CtrlType) == "folder" && text::iequals(ctrl->CtrlID, folderId))
      return ctrl->CtrlOFolder;
  return {};
}

std::string Generation::JoinOutputFolder(const std::string& folderId, const std::string& folder) {
  if (folderId.empty()) return folder;
  std::string joined = FolderById(folderId);
  if (!folder.empty()) {
    if (!joined.empty() && !endsWithSeparator(joined)) joined += '/';
    joined += folder;
  }
  return joined;
}

std::string Generation::OutputPath(const std::string& folder, const std::string& fileName,
                                   bool noCreate) {
  const bool fromSiteRoot = folder.starts_with("~\\") || folder.starts_with("~/");
  std::string path = EnsureSep(fromSiteRoot ? siteRoot() : project_.attrText("Destination"));
  const std::string relative = fromSiteRoot ? folder.substr(2) : folder;
  if (!relative.empty()) {
    path += relative;
    if (!endsWithSeparator(path)) path += '\\';
    if (!noCreate) MakeFolder(path);
  }
  return path + fileName;
}

std::string Generation::siteRoot() {
  const std::string root(text::trimBlanks(project_.attrText("AppRootFolder")));
  return root.empty() ? project_.attrText("Destination") : root;
}

}  // namespace bw
