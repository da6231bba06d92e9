#include "generation/output_files.h"

#include <filesystem>
#include <fstream>
#include <memory>
#include <system_error>
#include <unordered_set>

#include "core/agp_vars.h"
#include "core/registry.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/text.h"

namespace bw {
namespace {

// Appends `line` to the file, after a CR LF when the file has content.
void appendLine(const std::string& path, const std::string& line) {
  const bool hasContent = files::fileSize(path) > 0;
  std::ofstream out(files::nativePath(path), std::ios::binary | std::ios::app);
  if (hasContent) out << text::kCrLf;
  out << line;
}

}  // namespace

// The paths of the run log, so that a run does not read the whole log for
// every file it writes. The log is read again when it is another file, or
// when its size says that someone else changed it.
struct RunLogIndex {
  std::string log;
  std::uintmax_t size = 0;
  std::unordered_set<std::string, text::CaseInsensitiveHash, text::CaseInsensitiveEqual> paths;
};

namespace {

RunLogIndex& runLogIndex(const std::string& log) {
  std::shared_ptr<RunLogIndex>& index = AGPVars().RunLog;
  if (index && index->log == log && index->size == files::fileSize(log)) return *index;
  index = std::make_shared<RunLogIndex>();
  index->log = log;
  index->size = files::fileSize(log);
  if (index->size > 0)
    for (std::string& line : text::split(files::readTextFile(log), text::kCrLf))
      index->paths.insert(std::move(line));
  return *index;
}

}  // namespace

bool ConfirmOverwrite(const std::string& path, bool allow, bool check) {
  if (check) return files::fileExists(path);
  if (!files::fileExists(path)) return true;
  if (!allow) return false;
  if (GeneralFlag("BackupFile")) files::copyFile(path, path + ".bak");
  return true;
}

bool ConfirmFolderOverwrite(const std::string& path, bool allow, bool check) {
  if (check) return files::folderExists(path);
  if (!files::folderExists(path)) return true;
  if (!allow) return false;
  if (GeneralFlag("BackupFile")) {
    const std::filesystem::path backup = files::nativePath(path + ".bak");
    std::error_code ec;
    std::filesystem::remove_all(backup, ec);
    std::filesystem::copy(files::nativePath(path), backup,
                          std::filesystem::copy_options::recursive, ec);
  }
  return true;
}

void LogGeneratedFile(const std::string& path, std::int64_t startTick, std::int64_t endTick) {
  AGPVarsData& vars = AGPVars();
  const std::string log = files::joinPath(vars.Destination, vars.ProductKey + ".log");
  RunLogIndex& index = runLogIndex(log);
  if (index.paths.contains(path)) return;
  appendLine(log, path);
  index.paths.insert(path);
  index.size = files::fileSize(log);
  if (!vars.ProfilerOn) return;
  appendLine(vars.ProfilerFile, path + "\t(" + formatDate(clock::now()) + ": " +
                                    std::to_string(endTick - startTick) + " ms)");
  if (!vars.ProfilerNote.empty()) {
    appendLine(vars.ProfilerFile, vars.ProfilerNote);
    vars.ProfilerNote.clear();
  }
}

}  // namespace bw
