#include "persistence/project_files.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

#include "core/agp_vars.h"
#include "platform/files.h"
#include "platform/host.h"
#include "platform/text.h"

namespace bw {
namespace {

namespace fs = std::filesystem;

std::string backupPath(const std::string& folder, const std::string& fileName, int number) {
  return files::joinPath(folder, BackupFileName(fileName, number));
}

// The encoding a document's declaration names, as pugixml writes it.
pugi::xml_encoding declaredEncoding(const pugi::xml_document& document) {
  const pugi::xml_node declaration = document.first_child();
  if (declaration.type() != pugi::node_declaration) return pugi::encoding_utf8;
  const std::string name = text::toLower(declaration.attribute("encoding").value());
  if (name == "iso-8859-1" || name == "windows-1252" || name == "latin1") return pugi::encoding_latin1;
  if (name == "utf-16" || name == "unicode") return pugi::encoding_utf16_le;
  return pugi::encoding_utf8;
}

std::string serialised(const pugi::xml_document& document, pugi::xml_encoding encoding) {
  std::ostringstream out;
  document.save(out, "", pugi::format_raw, encoding);
  return out.str();
}

// By the file's mode, as a user sets it to protect a file; access() would
// let root through.
bool readOnly(const std::string& path) {
  std::error_code ec;
  const fs::file_status status = fs::status(files::nativePath(path), ec);
  return !ec && fs::is_regular_file(status) &&
         (status.permissions() & fs::perms::owner_write) == fs::perms::none;
}

}  // namespace

std::string BackupFileName(const std::string& fileName, int number) {
  const std::size_t dot = fileName.rfind('.');
  const std::string suffix = "(" + std::to_string(number) + ")";
  if (dot == std::string::npos) return fileName + suffix;
  return fileName.substr(0, dot) + suffix + fileName.substr(dot);
}

void BackupProjectFile(const std::string& path, const std::string& folder, int maxCount) {
  if (!files::fileExists(path)) return;
  files::createFolders(folder);
  std::string engineForm = path;
  for (char& c : engineForm)
    if (c == '/') c = '\\';
  const std::string name = engineForm.substr(engineForm.rfind('\\') + 1);

  int gap = 1;
  while (files::fileExists(backupPath(folder, name, gap))) ++gap;
  std::error_code ignored;
  for (int i = gap - 1; i >= 1; --i) {
    const fs::path from = files::nativePath(backupPath(folder, name, i));
    if (i < maxCount)
      fs::copy_file(from, files::nativePath(backupPath(folder, name, i + 1)),
                    fs::copy_options::overwrite_existing, ignored);
    else
      fs::remove(from, ignored);
  }
  fs::copy_file(files::nativePath(path), files::nativePath(backupPath(folder, name, 1)),
                fs::copy_options::overwrite_existing, ignored);
}

bool WriteProjectText(const std::string& path, std::string_view bytes, std::string& error) {
  if (readOnly(path)) {
    error = "Permission denied: '" + path + "' is read-only";
    return false;
  }
  return files::writeFileAtomic(path, bytes, &error);
}

bool SaveDom(const std::string& path, const pugi::xml_document& document, bool utf8,
             std::string& error) {
  const std::string bytes =
      utf8 ? std::string(kUtf8ByteOrderMark) + serialised(document, pugi::encoding_utf8)
           : serialised(document, declaredEncoding(document));
  return WriteProjectText(path, bytes, error);
}

bool WriteUtf8File(const std::string& path, const std::string& text) {
  std::string error;
  if (files::writeFileAtomic(path, std::string(kUtf8ByteOrderMark) + text, &error)) return true;
  AGPVarsData& vars = AGPVars();
  vars.host->showMessage(
      "Error in writing utf8 data to file '" + path + "', error description: " + error,
      vars.ProductName, MessageIcon::Warning);
  return false;
}

std::string DetectEncoding(const std::string& path) {
  std::ifstream in(files::nativePath(path), std::ios::binary);
  char head[3] = {};
  in.read(head, 3);
  const std::string_view bytes(head, static_cast<std::size_t>(in.gcount()));
  if (bytes == kUtf8ByteOrderMark) return "UTF-8";
  if (bytes.starts_with("\xFE\xFF")) return "UNICODE BIG";
  if (bytes.starts_with("\xFF\xFE")) return "UNICODE";
  return {};
}

}  // namespace bw
