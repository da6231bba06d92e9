// AGPFileCache: the session texts of the loaded template files, in memory.
//
// A template file is divided into named sessions:
//
//   text outside sessions is ignored
//   <!--##session list##-->  ...the text of session "list"...  <!--##/session##-->
//
// Composition fetches sessions by (file name, session name) again and again,
// so the texts are kept in a hash map keyed by that exact pair. Adding a
// session that exists already replaces its text: a later file of the same
// name (an extension's, say) overrides the template's own.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "core/dispatch.h"

namespace bw {

class AGPFileCache : public Dispatch {
 public:
  void Clear();

  // Reads the template file at `FilePath` and stores each of its sessions
  // under `FileName`. A file that does not exist adds nothing.
  void AddFile(const std::string& FilePath, const std::string& FileName);

  // The session's text; "" when no session of that exact file and name is
  // stored.
  std::string GetSession(const std::string& FileName, const std::string& SessName) const;

  // GetSession without the copy, for callers inside the engine. The view is
  // valid until the cache changes.
  std::string_view sessionText(std::string_view fileName, std::string_view sessName) const;

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPFileCache"; }

 private:
  // Keys compare exactly. Lookups go through KeyView, so that a query
  // allocates nothing.
  struct Key {
    std::string file;
    std::string session;
  };
  struct KeyView {
    std::string_view file;
    std::string_view session;
  };
  struct KeyHash {
    using is_transparent = void;
    std::size_t operator()(const KeyView& k) const;
    std::size_t operator()(const Key& k) const { return (*this)(KeyView{k.file, k.session}); }
  };
  struct KeyEqual {
    using is_transparent = void;
    static KeyView view(const Key& k) { return {k.file, k.session}; }
    static KeyView view(const KeyView& k) { return k; }
    template <typename A, typename B>
    bool operator()(const A& a, const B& b) const {
      const KeyView x = view(a), y = view(b);
      return x.file == y.file && x.session == y.session;
    }
  };

  void addSessions(std::string_view fileName, std::string_view text);
  void store(std::string_view fileName, std::string_view sessName, std::string_view text);

  std::unordered_map<Key, std::string, KeyHash, KeyEqual> sessions_;
};

// The shared file cache of AGPVars, created on first use.
AGPFileCache& FileCache();

}  // namespace bw
