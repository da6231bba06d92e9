#include "template/file_cache.h"

#include "core/agp_vars.h"
#include "platform/files.h"
#include "platform/text.h"
#include "template/marks.h"

namespace bw {
namespace {

// Session marks are found without regard to case.
constexpr std::string_view kSessionHead = "<!--##session";
constexpr std::string_view kSessionFoot = "<!--##/session##-->";
constexpr auto npos = std::string_view::npos;

}  // namespace

std::size_t AGPFileCache::KeyHash::operator()(const KeyView& k) const {
  const std::size_t h = std::hash<std::string_view>()(k.file);
  return h ^
         (std::hash<std::string_view>()(k.session) + 0x9e3779b97f4a7c15ull + (h << 6) + (h >> 2));
}

void AGPFileCache::Clear() {
  sessions_.clear();
}

void AGPFileCache::AddFile(const std::string& FilePath, const std::string& FileName) {
  if (!files::fileExists(FilePath)) return;
  addSessions(FileName, files::readTextFile(FilePath));
}

std::string AGPFileCache::GetSession(const std::string& FileName,
                                     const std::string& SessName) const {
  return std::string(sessionText(FileName, SessName));
}

std::string_view AGPFileCache::sessionText(std::string_view fileName,
                                           std::string_view sessName) const {
  auto it = sessions_.find(KeyView{fileName, sessName});
  return it == sessions_.end() ? std::string_view() : std::string_view(it->second);
}

// A session runs from behind its head to the next foot. The next head is
// looked for behind the head, not behind the foot, so a head inside a
// session's text starts one more session; a head without a foot stores
// nothing, and text between sessions is ignored.
void AGPFileCache::addSessions(std::string_view fileName, std::string_view text) {
  for (std::size_t open = text::ifindAscii(text, kSessionHead); open != npos;) {
    const std::size_t nameStart = open + kSessionHead.size();
    const std::size_t close = text.find(kBlockClose, nameStart);
    if (close == npos) return;
    const std::size_t body = close + kBlockClose.size();
    const std::size_t end = text::ifindAscii(text, kSessionFoot, body);
    if (end != npos)
      store(fileName, text::trimBlanks(text.substr(nameStart, close - nameStart)),
            text.substr(body, end - body));
    open = text::ifindAscii(text, kSessionHead, body);
  }
}

void AGPFileCache::store(std::string_view fileName, std::string_view sessName,
                         std::string_view text) {
  sessions_.insert_or_assign(Key{std::string(fileName), std::string(sessName)}, std::string(text));
}

const MemberTable& AGPFileCache::members() const {
  static const MemberTable table{
      method<&AGPFileCache::Clear>("Clear"),
      method<&AGPFileCache::AddFile>("AddFile"),
      method<&AGPFileCache::GetSession>("GetSession"),
  };
  return table;
}

AGPFileCache& FileCache() {
  Ref<Dispatch>& shared = AGPVars().FileCache;
  if (!shared) shared = make<AGPFileCache>();
  // Only this accessor fills the slot.
  return static_cast<AGPFileCache&>(*shared);
}

}  // namespace bw
