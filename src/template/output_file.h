// Writing one generated file, and the progress of a generation run.
#pragma once

#include <string>

namespace bw {

// Replaces the file at `path` with `text`. With the general setting
// UTF8Output on and `raw` false the file starts with a UTF-8 byte order
// mark (the generated site's pages need it); otherwise it is plain text.
// A failure does not stop the run: it is shown in a message box. Readers
// see the old file or the new one, never a part.
void WriteOutputFile(const std::string& path, const std::string& text, bool raw = false);

// One more unit of the run done: ProgressDone grows by one and the status
// display shows the share of ProgressTotal.
void StepProgress();

}  // namespace bw
