#include "template/cache.h"

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <pugixml.hpp>

#include "core/agp_vars.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/xml.h"
#include "template/template_folders.h"

namespace bw {
namespace {

constexpr std::string_view kCacheFileName = "cache.xml";

// The local time as yyyymmddhhnnss.
std::string timestampNow() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char stamp[16];
  std::strftime(stamp, sizeof stamp, "%Y%m%d%H%M%S", &local);
  return stamp;
}

// A file where a folder belongs is kept under its name plus a timestamp,
// so that making the folder loses nothing.
void moveFileAside(const std::string& path) {
  if (!files::fileExists(path)) return;
  std::error_code ec;
  std::filesystem::rename(files::nativePath(path), files::nativePath(path + "." + timestampNow()),
                          ec);
}

// An earlier error is the one the user needs to see, so it is not replaced.
void reportUnlessErrorStands(std::string_view text) {
  std::string& projErr = AGPVars().ProjErr;
  if (projErr.empty()) projErr = ProductMessage(text);
}

// Plain values are written as they stand; the XML specials are escaped so
// that a key with "&" does not make the file unreadable.
std::string escapeAttribute(std::string_view value) {
  std::string out;
  out.reserve(value.size());
  for (char c : value) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

// Name="value" followed by a blank.
std::string attributeText(std::string_view name, std::string_view value) {
  return std::string(name) + "=\"" + escapeAttribute(value) + "\" ";
}

}  // namespace

AGPCache::AGPCache() {
  AGPVarsData& vars = AGPVars();
  const std::string templateFolder = TemplateBaseFolderOf(vars.TemplateName);
  folder_ = files::joinPath(templateFolder, "cache");
  vars.CacheFolder = folder_;

  moveFileAside(templateFolder);
  if (!files::createFolders(folder_)) {
    reportUnlessErrorStands(": Cannot create the cache folder \"" + folder_ + "\"!");
    return;
  }
  const std::string file = files::joinPath(folder_, kCacheFileName);
  if (files::fileExists(file)) readCacheFile(file);
}

// Names and attributes are matched exactly: this class is the file's only
// writer. Anything else reads as an empty record.
void AGPCache::readCacheFile(const std::string& path) {
  pugi::xml_document doc;
  if (!xml::loadFile(doc, path)) return;
  const pugi::xml_node root = doc.document_element();
  if (std::string_view(root.name()) != "Cache") return;
  for (const pugi::xml_node& node : root.children("CacheEntry"))
    entries_.push_back({node.attribute("Group").value(), node.attribute("Key").value(),
                        node.attribute("DateTime").value(), node.attribute("Size").value()});
}

const AGPCache::Entry* AGPCache::find(const Variant& group, const Variant& key) const {
  const std::string groupText = group.toText();
  const std::string keyText = key.toText();
  for (const Entry& entry : entries_)
    if (text::iequals(entry.group, groupText) && text::iequals(entry.key, keyText)) return &entry;
  return nullptr;
}

bool AGPCache::AddCache(const Variant& sGroup, const Variant& sKey, const Variant& dt,
                        const Variant& size) {
  const Entry* found = find(sGroup, sKey);
  Entry& entry = found ? entries_[static_cast<std::size_t>(found - entries_.data())]
                       : entries_.emplace_back(Entry{sGroup.toText(), sKey.toText(), {}, {}});
  entry.date = CacheDateText(dt);
  entry.size = size.toText();
  return true;
}

bool AGPCache::DeleteCache(const Variant& sGroup, const Variant& sKey) {
  const Entry* found = find(sGroup, sKey);
  if (!found) return false;
  entries_.erase(entries_.begin() + (found - entries_.data()));
  return true;
}

bool AGPCache::DeleteCacheGroup(const Variant& sGroup) {
  const std::string group = sGroup.toText();
  return std::erase_if(entries_, [&](const Entry& e) { return text::iequals(e.group, group); }) > 0;
}

bool AGPCache::DeleteAllCache() {
  entries_.clear();
  return true;
}

std::int16_t AGPCache::CheckCache(const Variant& sGroup, const Variant& sKey, const Variant& dt,
                                  const Variant& size) const {
  const Entry* entry = find(sGroup, sKey);
  if (!entry) return 2;
  return entry->date == CacheDateText(dt) && entry->size == size.toText() ? 0 : 1;
}

Variant AGPCache::GetCacheDate(const Variant& sGroup, const Variant& sKey) const {
  const Entry* entry = find(sGroup, sKey);
  return entry ? Variant(entry->date) : Variant::date(0.0);
}

bool AGPCache::MatchCacheGroup(const Variant& sGroup, const Variant& sList) const {
  const std::string group = sGroup.toText();
  const std::string list = sList.toText();
  const std::vector<std::string> lines =
      list.empty() ? std::vector<std::string>() : text::split(list, text::kCrLf);
  std::vector<bool> used(lines.size(), false);
  for (const Entry& entry : entries_) {
    if (!text::iequals(entry.group, group)) continue;
    auto line = std::find_if(lines.begin(), lines.end(),
                             [&](const std::string& l) { return text::iequals(l, entry.key); });
    if (line == lines.end()) return false;
    used[static_cast<std::size_t>(line - lines.begin())] = true;
  }
  return std::all_of(used.begin(), used.end(), [](bool u) { return u; });
}

bool AGPCache::WriteCacheFile() const {
  const std::string path = files::joinPath(folder_, kCacheFileName);
  std::string error;
  if (files::writeFileAtomic(path, cacheFileText(), &error)) return true;
  reportUnlessErrorStands(": Cannot write the cache file \"" + path + "\": " + error);
  return false;
}

std::string AGPCache::cacheFileText() const {
  const AGPVarsData& vars = AGPVars();
  std::string out = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n";
  out += "<Cache " + attributeText("Product", vars.ProductKey) +
         attributeText("Version", vars.ProductVersion) + ">\r\n";
  for (const Entry& e : entries_)
    out += "<CacheEntry " + attributeText("Group", e.group) + attributeText("Key", e.key) +
           attributeText("DateTime", e.date) + attributeText("Size", e.size) + "/>\r\n";
  out += "</Cache>\r\n";
  return out;
}

AGPCache* RunCache() { return static_cast<AGPCache*>(AGPVars().Cache.get()); }

const MemberTable& AGPCache::members() const {
  using C = AGPCache;
  static const MemberTable table{
      method<&C::AddCache>("AddCache"),
      method<&C::DeleteCache>("DeleteCache"),
      method<&C::DeleteCacheGroup>("DeleteCacheGroup"),
      method<&C::DeleteAllCache>("DeleteAllCache"),
      method<&C::CheckCache>("CheckCache"),
      method<&C::GetCacheDate>("GetCacheDate"),
      method<&C::MatchCacheGroup>("MatchCacheGroup"),
      method<&C::WriteCacheFile>("WriteCacheFile"),
  };
  return table;
}

std::string CacheDateText(const Variant& dt) {
  std::optional<double> date;
  if (dt.type() == VarType::Date) date = dt.dbl();
  if (dt.isString()) date = parseDate(dt.string());
  if (!date) return dt.toText();
  const clock::DateParts p = clock::splitDate(*date);
  std::tm time{};
  time.tm_year = p.year - 1900;
  time.tm_mon = p.month - 1;
  time.tm_mday = p.day;
  time.tm_hour = p.hour;
  time.tm_min = p.minute;
  time.tm_sec = p.second;
  return clock::sortableDateTime(time);
}

}  // namespace bw
