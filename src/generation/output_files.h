// Writing generated files, and the progress of a generation run.
#pragma once

#include <cstdint>
#include <string>

namespace bw {

// Replaces the file at `path` with `text`. With the general setting
// UTF8Output on and `raw` false the file starts with a UTF-8 byte order
// mark (the generated site's pages need it); otherwise it is plain text.
// A failure does not stop the run: it is shown in a message box. Readers
// see the old file or the new one, never a part.
void WriteOutputFile(const std::string& path, const std::string& text, bool raw = false);

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

// One more unit of the run done: ProgressDone grows by one and the status
// display shows the share of ProgressTotal.
void StepProgress();

}  // namespace bw
