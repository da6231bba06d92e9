// How project files reach the disk: numbered backups, the UTF-8 writer, and
// the encoding probe.
#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>

namespace bw {

// Keeps the file at `path` as backup 1 in `folder`, named stem(1).ext, after
// moving backups 1.. up by one as far as the first gap; numbers from
// `maxCount` on are dropped. Never fails: a backup must not stop a save.
void BackupProjectFile(const std::string& path, const std::string& folder, int maxCount);

// The name of backup `number` of the file named `fileName` ("a.agx" gives
// "a(2).agx", "a" gives "a(2)").
std::string BackupFileName(const std::string& fileName, int number);

// Writes the document to `path`: with `utf8` as UTF-8 with a byte order mark,
// otherwise in the encoding its declaration names. The new file is written
// beside the old one and renamed into place, so a crash leaves either. A
// read-only file is not replaced. False with `error` set on failure.
bool SaveDom(const std::string& path, const pugi::xml_document& document, bool utf8,
             std::string& error);

inline constexpr std::string_view kUtf8ByteOrderMark = "\xEF\xBB\xBF";

// Replaces the file at `path` with `bytes`: written beside it and renamed
// into place. A read-only file is not replaced. False with `error` set.
bool WriteProjectText(const std::string& path, std::string_view bytes, std::string& error);

// Writes `text` as UTF-8 with a byte order mark, replacing the file
// atomically. A failure is shown in a message box.
bool WriteUtf8File(const std::string& path, const std::string& text);

// "UTF-8", "UNICODE BIG" or "UNICODE" by the file's byte order mark; "" for
// none or a file that cannot be read.
std::string DetectEncoding(const std::string& path);

}  // namespace bw
