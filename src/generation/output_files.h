// Overwrite confirmation and the run log of generated files.
#pragma once

#include <cstdint>
#include <string>

namespace bw {

// Whether the generated file at `path` may be (over)written. In check mode:
// whether it exists. Otherwise a new path may; an existing one only when
// `allow`, after it was copied to path + ".bak" when the general setting
// BackupFile is on.
bool ConfirmOverwrite(const std::string& path, bool allow, bool check);
// The same for a folder; its backup replaces an older ".bak" folder.
bool ConfirmFolderOverwrite(const std::string& path, bool allow, bool check);

// Lists `path` in the run log (<Destination>\<product key>.log), once: a
// path that stands in it already keeps its place. With the profiler on, a
// line with the time the file took goes to the profiler log.
void LogGeneratedFile(const std::string& path, std::int64_t startTick, std::int64_t endTick);

}  // namespace bw
