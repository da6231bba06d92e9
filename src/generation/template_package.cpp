#include "generation/template_package.h"

#include <filesystem>
#include <system_error>

#include "core/agp_vars.h"
#include "generation/generation.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/zip.h"
#include "template/cache.h"
#include "template/template_folders.h"

namespace bw {
namespace {

std::string madeFolder(const std::string& path) {
  MakeFolder(path);
  return path;
}

// Unpacking is silent towards the user; what went wrong stays in the trace
// for whoever looks into a template that did not unpack.
void unpack(const std::string& file, const std::string& folder) {
  std::string target = folder;
  while (!target.empty() && (target.back() == '\\' || target.back() == '/')) target.pop_back();
  std::error_code ec;
  std::filesystem::remove_all(files::nativePath(target), ec);
  const zip::ExtractResult result = zip::ExtractZip(file, target);
  if (!result.ok || !result.error.empty()) {
    std::string& trace = AGPVars().Trace;
    if (!trace.empty()) trace += text::kCrLf;
    trace += "Unpacking " + file + ": " + result.error;
  }
}

}  // namespace

std::string PrepareTemplateFolders(const std::string& baseName, const std::string& kind,
                                   bool isExtension) {
  if (baseName.empty()) return {};
  AGPVarsData& vars = AGPVars();
  if (isExtension) {
    if (vars.ExtensionsFolder.empty()) return {};
    vars.ExtensionFolder = madeFolder(files::joinPath(vars.ExtensionsFolder, kind));
    return vars.ExtensionFolder;
  }
  vars.TemplateBaseFolder = madeFolder(TemplateBaseFolderOf(baseName));
  vars.ExtensionsFolder = madeFolder(files::joinPath(vars.TemplateBaseFolder, "extensions"));
  vars.CacheFolder = madeFolder(files::joinPath(vars.TemplateBaseFolder, "cache"));
  vars.BootstrapFolder = madeFolder(files::joinPath(vars.TemplateBaseFolder, "bootstrap"));
  return madeFolder(files::joinPath(vars.TemplateBaseFolder, kind));
}

std::string PrepareTemplatePackage(const std::string& file, const std::string& kind,
                                   bool isExtension, bool extract, bool force) {
  if (file.empty()) return {};
  std::string folder = PrepareTemplateFolders(files::fileNameOf(file), kind, isExtension);
  if (!extract || folder.empty()) return folder;
  bool unpackNow = force;
  if (!force) {
    const std::string root = PackageRootFolder(folder);
    if (root.empty())
      unpackNow = true;
    else
      folder = root;
  }
  if (unpackNow && files::fileExists(file)) {
    unpack(file, folder);
    const std::string root = PackageRootFolder(folder);
    if (!root.empty()) folder = root;
  }
  return folder;
}

void DeleteFilesByExtension(const std::string& folder, const std::string& extension) {
  std::error_code ec;
  for (const auto& entry : std::filesystem::directory_iterator(files::nativePath(folder), ec)) {
    if (!entry.is_regular_file(ec)) continue;
    const std::string name = entry.path().filename().string();
    const std::size_t dot = name.rfind('.');
    if (dot != std::string::npos && text::iequals(name.substr(dot + 1), extension))
      std::filesystem::remove(entry.path(), ec);
  }
}

std::int16_t CheckFileCache(const std::string& group, const std::string& key,
                            const std::string& path) {
  if (!files::fileExists(path)) return -1;
  const AGPCache* cache = RunCache();
  if (!cache) return 2;
  return cache->CheckCache(Variant(group), Variant(key), Variant(FileDateText(path)),
                           Variant(std::to_string(files::fileSize(path))));
}

void AddFileCache(const std::string& group, const std::string& key, const std::string& path) {
  AGPCache* cache = RunCache();
  if (!cache || !files::fileExists(path)) return;
  cache->AddCache(Variant(group), Variant(key), Variant(FileDateText(path)),
                  Variant(std::to_string(files::fileSize(path))));
}

}  // namespace bw
