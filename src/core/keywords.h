// AGPKeyword: the reserved words of the target languages.
//
// Generated variable names must not collide with a word of C# or VB.NET, so
// MakeVarName asks IsKeyword. The words come from the keyword file named by
// the setting Keyword: XML whose root is "<product key>.keyword" and whose
// "keyword" children carry `lang` ("*" for every language) and `value`.
// VB.NET is not case-sensitive, so for it a word matches in any case.
#pragma once

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/dispatch.h"

namespace bw {

class AGPKeyword : public Dispatch {
 public:
  std::int16_t Count() const { return static_cast<std::int16_t>(words_.size()); }
  std::int16_t curIndex() const { return curIndex_; }
  void setCurIndex(std::int16_t v) { curIndex_ = v; }

  // Adds the words of a keyword file to the list. False if the file does
  // not load as XML; true otherwise, also for a file with the wrong root,
  // which adds nothing and leaves "Keyword file is invalid!" in error().
  bool Load(const Variant& file);
  bool IsKeyword(const std::string& language, const std::string& word) const;

  // The last load's error text; "" after a good load.
  const std::string& error() const { return error_; }

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPKeyword"; }

 private:
  struct Words {
    std::unordered_set<std::string> exact;
    std::unordered_set<std::string> folded;
  };

  void addWord(const std::string& language, const std::string& word);
  bool matches(const std::string& languageKey, const std::string& word, bool anyCase) const;

  std::vector<std::pair<std::string, std::string>> words_;  // (lang, value) in file order
  std::unordered_map<std::string, Words> byLanguage_;        // folded lang -> words
  std::string error_;
  std::int16_t curIndex_ = 0;
};

// The shared keyword list, created on first use with the file that the
// setting Keyword names.
AGPKeyword& Keywords();

}  // namespace bw
