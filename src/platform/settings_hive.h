// Settings hives: the file-backed key and value store behind cRegistry.
//
// A hive is a tree of keys, addressed by paths such as
// "Software\Brindlework\12.0\Settings\General". Each key holds values and
// subkeys. Names of both match without regard to case, keep the spelling they
// were first written with, and enumerate in the order they were created. A
// value is a type number and raw bytes, as in a registry; the default value of
// a key has the empty name. Raw bytes by type:
//
//   1 text, 2 text with %NAME% references   UTF-8, no terminating NUL
//   4 number                                 4 bytes, low byte first
//   5 number, high byte first                4 bytes, high byte first
//   7 several texts                          each text followed by a NUL
//   3 binary, any other type                 as given
//
// The file is UTF-8 text (CR LF written, LF accepted), one key after another:
//
//   ; Brindlework settings hive
//
//   [Software\Brindlework\12.0\Settings\General]
//   "LanguageFolder"=expand:"%BRINDLEWORK_SHARE%\\lang"
//   "ScriptEngineTimeout"=dword:0000ea60
//   @="the default value"
//
// Grammar (blanks may surround "=" and follow ","):
//
//   file    := { blank-line | comment | header | entry }
//   comment := ";" any-text
//   header  := "[" path "]"                 names joined by "\"; "[]" is the root
//   entry   := name "=" data                 belongs to the last header
//   name    := "@" | string                  "@" is the default value
//   data    := string                        type 1
//            | "expand:" string              type 2
//            | "dword:" hex{1,8}             type 4, the number in hexadecimal
//            | "dword-be:" hex{1,8}          type 5, the number in hexadecimal
//            | "multi:" [ string { "," string } ]    type 7
//            | "hex:" bytes                  type 3
//            | "hex(" hex{1,8} "):" bytes    any type, as raw bytes
//   bytes   := [ hex{2} { "," hex{2} } ]
//   string  := '"' { char | escape } '"'     escape: \\ \" \r \n \t \0 \xHH
//
// A key with values, or without subkeys, is written with its header, so
// empty keys survive; the others arise from their subkeys' paths. A value
// whose bytes have no readable form (a number of 3 bytes, say) is written as
// "hex(N):". A value named twice in one key is an error; a header repeated
// later in the file reopens its key. Comments are for hand-made files: the
// engine does not keep them when it rewrites a hive.
//
// Writes replace the whole file atomically (temp file, fsync, rename): a
// reader or a crash sees the old file or the new one, never a part. A Hive
// rereads its file when it changed on disk since it was read, so two
// processes see each other's writes; the last writer wins.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/text.h"

namespace bw::settings {

// Where the hives live. User hive: $BRINDLEWORK_USER_HIVE, else
// $XDG_CONFIG_HOME/brindlework/user.reg (XDG_CONFIG_HOME defaults to
// $HOME/.config). Machine hive: $BRINDLEWORK_MACHINE_HIVE, else machine.reg in
// the share folder.
std::string userHivePath();
std::string machineHivePath();

// Replaces each %NAME% by the environment variable NAME. BRINDLEWORK_SHARE
// falls back to the share folder; an unknown name stays as written.
//   expandReferences("%HOME%\\x") == "/home/ann\\x"
std::string expandReferences(std::string_view text);

// The outcome of loading, parsing or changing a hive; pugixml-style, it says
// what failed and where.
struct HiveStatus {
  std::string message;  // "" when all went well
  std::string file;
  std::size_t line = 0;  // 1-based line of a parse error, 0 otherwise

  bool ok() const { return message.empty(); }
  // "file:line: message", or "file: message" without a line.
  std::string describe() const;

  static HiveStatus failure(std::string file, std::string message, std::size_t line = 0);
};

struct Value {
  std::uint32_t type = 0;
  std::string data;  // raw bytes, see the table above

  bool operator==(const Value&) const = default;
};

// Entries in creation order, found by name without regard to case. The name
// keeps the spelling it was first stored with.
template <typename T>
class NamedList {
 public:
  using Entry = std::pair<std::string, T>;

  T* find(std::string_view name) {
    auto it = index_.find(name);
    return it == index_.end() ? nullptr : &entries_[it->second].second;
  }
  const T* find(std::string_view name) const { return const_cast<NamedList*>(this)->find(name); }

  // Replaces the item of that name, or appends a new entry.
  T& put(std::string_view name, T item) {
    if (T* existing = find(name)) return *existing = std::move(item);
    index_.emplace(std::string(name), entries_.size());
    return entries_.emplace_back(std::string(name), std::move(item)).second;
  }

  bool erase(std::string_view name) {
    auto it = index_.find(name);
    if (it == index_.end()) return false;
    const std::size_t position = it->second;
    index_.erase(it);
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(position));
    for (auto& [key, at] : index_)
      if (at > position) --at;
    return true;
  }

  std::size_t size() const { return entries_.size(); }
  bool empty() const { return entries_.empty(); }
  auto begin() const { return entries_.begin(); }
  auto end() const { return entries_.end(); }

 private:
  std::vector<Entry> entries_;
  std::unordered_map<std::string, std::size_t, text::CaseInsensitiveHash,
                     text::CaseInsensitiveEqual>
      index_;
};

// One key of the tree.
class Key {
 public:
  NamedList<Value>& values() { return values_; }
  const NamedList<Value>& values() const { return values_; }
  const NamedList<std::unique_ptr<Key>>& subkeys() const { return subkeys_; }

  // The key at `path` below this one; empty path components are ignored, so
  // "" is this key itself.
  Key* find(std::string_view path);
  // The same, creating missing keys on the way.
  Key& make(std::string_view path);
  // Removes the direct subkey `name` with everything below it.
  bool eraseSubkey(std::string_view name) { return subkeys_.erase(name); }

 private:
  NamedList<Value> values_;
  NamedList<std::unique_ptr<Key>> subkeys_;
};

// Splits a key path at "\", dropping empty components.
std::vector<std::string_view> splitKeyPath(std::string_view path);

// The text form above. parseHive fills `root` (which should be empty) and
// names `file` in its error.
HiveStatus parseHive(std::string_view text, std::string_view file, Key& root);
std::string formatHive(const Key& root);

// A hive file. Every call first rereads the file if it changed on disk; a
// missing file is an empty hive and is created by the first write. While the
// file cannot be read or parsed, reads find nothing, writes are refused (so
// the broken file is kept for the user to repair) and status() says why.
class Hive {
 public:
  explicit Hive(std::string file);
  Hive(const Hive&) = delete;
  Hive& operator=(const Hive&) = delete;

  const std::string& file() const { return file_; }

  // The state of the file as last read.
  const HiveStatus& status();

  bool keyExists(std::string_view path);
  std::optional<Value> value(std::string_view path, std::string_view name);
  std::optional<std::vector<std::string>> valueNames(std::string_view path);
  std::optional<std::vector<std::string>> subkeyNames(std::string_view path);

  // Each change is written to disk at once, or at the end of the enclosing
  // batch. A change that cannot be written is dropped from memory as well.
  [[nodiscard]] HiveStatus createKey(std::string_view path);
  // Fails for the root, a missing key and a key that still has subkeys.
  [[nodiscard]] HiveStatus deleteKey(std::string_view path);
  [[nodiscard]] HiveStatus setValue(std::string_view path, std::string_view name, Value value);
  [[nodiscard]] HiveStatus deleteValue(std::string_view path, std::string_view name);

  // Collects the changes made while it lives into one write of the file.
  // Batches nest; the outermost one writes. While a batch is open the hive
  // does not reread its file, which would drop the pending changes.
  //
  //   Hive::Batch batch(hive);
  //   for (...) (void)hive->setValue(...);
  //   HiveStatus written = batch.commit();
  class Batch {
   public:
    explicit Batch(std::shared_ptr<Hive> hive);
    Batch(Batch&& other) noexcept : hive_(std::move(other.hive_)) {}
    Batch& operator=(Batch&&) = delete;
    ~Batch();  // commits, ignoring a failure

    // Ends the batch and reports the write, if this was the outermost one.
    HiveStatus commit();

   private:
    std::shared_ptr<Hive> hive_;
  };

 private:
  // What tells one version of the file from another.
  struct Stamp {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    std::int64_t mtimeNs = 0;
    bool operator==(const Stamp&) const = default;
  };

  // The stamp of the file; none when it cannot be seen, with the reason in
  // `error` (ENOENT for a missing file).
  static std::optional<Stamp> stampOf(const std::string& file, int* error = nullptr);
  void refresh();
  void load();
  template <typename Change>
  HiveStatus change(Change&& apply);
  HiveStatus save();
  HiveStatus endBatch();

  std::string file_;
  Key root_;
  HiveStatus status_;
  std::optional<Stamp> stamp_;  // of the file as last read or written; none when missing
  bool loaded_ = false;
  int batchDepth_ = 0;
  bool pending_ = false;  // changes not yet written
};

}  // namespace bw::settings
