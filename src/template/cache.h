// AGPCache: the record of what a generation run unpacked and composed.
//
// A run compares each file it would unpack or compose with the record of the
// last run and skips the work when date and size are unchanged. The record
// is a list of entries (group, key, date, size); group and key compare
// without regard to case. It lives in cache.xml in the template's cache
// folder, one line per entry:
//
//   <?xml version="1.0" encoding="UTF-8" standalone="yes"?>
//   <Cache Product="Brindlework" Version="12.0" >
//   <CacheEntry Group="tpl" Key="list.tpl" DateTime="2024/05/01 09:30:00" Size="4711" />
//   </Cache>
//
// Lines end in CR LF. Dates are kept in the normal form "yyyy/mm/dd hh:nn:ss",
// which sorts like the date. A file that does not read as such XML gives an
// empty record: the next run composes everything again and loses nothing.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/dispatch.h"

namespace bw {

class AGPCache : public Dispatch {
 public:
  // Makes the folder chain <documents>\<product key>\Templates\<template
  // name>\cache, sets AGPVars().CacheFolder to it and reads its cache.xml.
  // A file in the place of the template's folder is renamed aside with a
  // timestamp. When the folder cannot be made, ProjErr says so (unless an
  // error stands already) and the record starts empty.
  AGPCache();

  // Sets the entry's date (in normal form) and size, appending it when the
  // group has no such key. Always true.
  bool AddCache(const Variant& sGroup, const Variant& sKey, const Variant& dt, const Variant& size);
  // Removes the first matching entry; false when there is none.
  bool DeleteCache(const Variant& sGroup, const Variant& sKey);
  // Removes every entry of the group; false when there was none.
  bool DeleteCacheGroup(const Variant& sGroup);
  bool DeleteAllCache();

  // 0 when the entry has this date and size, 1 when it differs, 2 when
  // there is no entry.
  std::int16_t CheckCache(const Variant& sGroup, const Variant& sKey, const Variant& dt,
                          const Variant& size) const;

  // The stored date text, or the zero date when there is no entry, which is
  // below every real date.
  Variant GetCacheDate(const Variant& sGroup, const Variant& sKey) const;

  // True when the group's keys and the CR LF separated lines of `sList` are
  // the same set, without regard to case. "" is no lines.
  bool MatchCacheGroup(const Variant& sGroup, const Variant& sList) const;

  // Replaces cache.xml with the record. On failure ProjErr says why (unless
  // an error stands already) and the result is false.
  bool WriteCacheFile() const;

  const std::string& folder() const { return folder_; }

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPCache"; }

 private:
  struct Entry {
    std::string group;
    std::string key;
    std::string date;
    std::string size;
  };

  const Entry* find(const Variant& group, const Variant& key) const;
  void readCacheFile(const std::string& path);
  std::string cacheFileText() const;

  std::vector<Entry> entries_;
  std::string folder_;
};

// The cache record of the current generation run (AGPVars().Cache); null
// outside a run.
AGPCache* RunCache();

// The normal form of a date, "yyyy/mm/dd hh:nn:ss"; a value that is neither
// a date nor a text that reads as one is given as its text.
std::string CacheDateText(const Variant& dt);

}  // namespace bw
