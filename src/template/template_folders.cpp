#include "template/template_folders.h"

#include <filesystem>
#include <system_error>

#include "core/agp_vars.h"
#include "core/status.h"
#include "platform/files.h"

namespace bw {

std::string PackageRootFolder(const std::string& folder) {
  if (!files::folderExists(folder)) return {};
  std::string current = folder;
  while (!files::fileExists(files::joinPath(current, "control.xml"))) {
    std::error_code ec;
    std::string only;
    int subFolders = 0;
    for (const auto& entry : std::filesystem::directory_iterator(files::nativePath(current), ec)) {
      if (!entry.is_directory(ec)) continue;
      if (++subFolders > 1) return {};
      only = entry.path().filename().string();
    }
    if (subFolders != 1) return {};
    current = files::joinPath(current, only);
  }
  return current;
}

std::string TemplateBaseFolderOf(std::string_view templateName) {
  const AGPVarsData& vars = AGPVars();
  const std::string documents =
      vars.DocumentsFolder.empty() ? files::documentsFolder() : vars.DocumentsFolder;
  std::string name;
  for (char c : templateName)
    if (c != ' ' && c != '/' && c != '\\') name += c;
  return files::joinPath(files::joinPath(files::joinPath(documents, ProductKeyWord()), "Templates"),
                         name);
}

std::string TemplateFolderOf(const std::string& extName) {
  if (extName.empty()) return AGPVars().TemplateFolder;
  return PackageRootFolder(files::joinPath(AGPVars().ExtensionsFolder, extName));
}

std::string TemplateFilePath(const std::string& folder, const std::string& name) {
  std::string path = files::joinPath(folder, name);
  if (files::fileExists(path) || files::folderExists(path)) return path;
  Status().CloseStatus();
  return {};
}

}  // namespace bw
