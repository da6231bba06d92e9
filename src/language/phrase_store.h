// AGPLanguage: the project's store of translations.
//
// Users translate project, menu, table and field attributes per language;
// each translation is a phrase record, kept here between the project file
// and the language files of the generated site. The store also registers
// which language files a generation run loaded and the id each declares.
//
//   Files    Id Desc FileName                          (each Load appends)
//   Project  LanguageId ProjectAttribute            -> Phrase
//   Menu     LanguageId MenuId MenuAttribute        -> Phrase
//   Table    LanguageId TableName TableAttribute    -> Phrase
//   Field    LanguageId TableName FieldName FieldAttribute -> Phrase
//   Phrases  Id (without regard to case)            -> Text
//
// Records keep the order in which they came; removals keep the order of the
// rest. The key fields of the phrase tables compare exactly, case included,
// as the phrases were stored, and the first record that matches wins.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/dispatch.h"

namespace bw {

// The public phrase records. ProjectItem and its sisters hand out copies,
// so that a script may read or change one without touching the store.
class AGProjectPhrase : public Dispatch {
 public:
  AGProjectPhrase() = default;
  AGProjectPhrase(std::string languageId, std::string attribute, std::string phrase)
      : LanguageId(std::move(languageId)),
        ProjectAttribute(std::move(attribute)),
        Phrase(std::move(phrase)) {}

  std::string LanguageId, ProjectAttribute, Phrase;

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGProjectPhrase"; }
};

class AGMenuPhrase : public Dispatch {
 public:
  AGMenuPhrase() = default;
  AGMenuPhrase(std::string languageId, std::string menuId, std::string attribute,
               std::string phrase)
      : LanguageId(std::move(languageId)),
        MenuId(std::move(menuId)),
        MenuAttribute(std::move(attribute)),
        Phrase(std::move(phrase)) {}

  std::string LanguageId, MenuId, MenuAttribute, Phrase;

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGMenuPhrase"; }
};

class AGTablePhrase : public Dispatch {
 public:
  AGTablePhrase() = default;
  AGTablePhrase(std::string languageId, std::string tableName, std::string attribute,
                std::string phrase)
      : LanguageId(std::move(languageId)),
        TableName(std::move(tableName)),
        TableAttribute(std::move(attribute)),
        Phrase(std::move(phrase)) {}

  std::string LanguageId, TableName, TableAttribute, Phrase;

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGTablePhrase"; }
};

class AGFieldPhrase : public Dispatch {
 public:
  AGFieldPhrase() = default;
  AGFieldPhrase(std::string languageId, std::string tableName, std::string fieldName,
                std::string attribute, std::string phrase)
      : LanguageId(std::move(languageId)),
        TableName(std::move(tableName)),
        FieldName(std::move(fieldName)),
        FieldAttribute(std::move(attribute)),
        Phrase(std::move(phrase)) {}

  std::string LanguageId, TableName, FieldName, FieldAttribute, Phrase;

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGFieldPhrase"; }
};

// A language file loaded for the current run: its id and description, and
// the file name they were read from.
struct LanguageFileRecord {
  std::string Id, Desc, FileName;
};

// An entry of the free phrase list that hosts and scripts keep.
struct PhraseRecord {
  std::string Id, Text;
};

// The identity fields of a phrase record, in order.
inline std::array<std::string_view, 2> IdentityOf(const AGProjectPhrase& p) {
  return {p.LanguageId, p.ProjectAttribute};
}
inline std::array<std::string_view, 3> IdentityOf(const AGMenuPhrase& p) {
  return {p.LanguageId, p.MenuId, p.MenuAttribute};
}
inline std::array<std::string_view, 3> IdentityOf(const AGTablePhrase& p) {
  return {p.LanguageId, p.TableName, p.TableAttribute};
}
inline std::array<std::string_view, 4> IdentityOf(const AGFieldPhrase& p) {
  return {p.LanguageId, p.TableName, p.FieldName, p.FieldAttribute};
}

// An identity as one text: each field with its length in front, so that no
// two different identities give the same text.
template <std::size_t N>
std::string PhraseKey(const std::array<std::string_view, N>& identity) {
  std::string key;
  for (std::string_view field : identity)
    key.append(std::to_string(field.size())).append(":").append(field);
  return key;
}

// One table of phrase records. Setting a phrase is a first-match search;
// a project loader sets tens of thousands of them, which as plain scans
// would cost quadratic time, so the table also keeps an index from
// identity to first position.
//
// The index is dropped by whatever moves or renames records rather than
// made to follow them, and is built again only after kScansBeforeIndex
// plain scans: building it costs dozens of scans, and a host that deletes
// and reads by turns would otherwise pay that on every read. Building it
// keeps the first of equal identities, which a rename can make.
template <typename Record>
class PhraseTable {
 public:
  using Identity = decltype(IdentityOf(std::declval<const Record&>()));

  const std::vector<Record>& records() const { return records_; }
  // For changes of identity fields in place; the index goes.
  std::vector<Record>& mutableRecords() {
    dropIndex();
    return records_;
  }
  std::int32_t count() const { return static_cast<std::int32_t>(records_.size()); }

  // The first record with this identity, or null.
  const Record* find(const Identity& identity) const {
    if (!indexed_ && ++scans_ > kScansBeforeIndex) buildIndex();
    if (indexed_) {
      auto it = first_.find(PhraseKey(identity));
      return it == first_.end() ? nullptr : &records_[it->second];
    }
    auto it =
        std::ranges::find_if(records_, [&](const Record& r) { return IdentityOf(r) == identity; });
    return it == records_.end() ? nullptr : &*it;
  }
  Record* find(const Identity& identity) {
    return const_cast<Record*>(static_cast<const PhraseTable&>(*this).find(identity));
  }
  // Appends a record whose identity find() did not know.
  void append(Record record) {
    if (indexed_) first_.try_emplace(PhraseKey(IdentityOf(record)), records_.size());
    records_.push_back(std::move(record));
  }
  // Removes every matching record; the rest keep their order.
  template <typename Match>
  void removeIf(Match match) {
    if (std::erase_if(records_, match) > 0) dropIndex();
  }

 private:
  static constexpr int kScansBeforeIndex = 64;

  void buildIndex() const {
    for (std::size_t i = 0; i < records_.size(); ++i)
      first_.try_emplace(PhraseKey(IdentityOf(records_[i])), i);
    indexed_ = true;
  }
  void dropIndex() {
    first_.clear();
    indexed_ = false;
    scans_ = 0;
  }

  std::vector<Record> records_;
  mutable std::unordered_map<std::string, std::size_t> first_;
  mutable bool indexed_ = false;
  mutable int scans_ = 0;
};

class AGPLanguage : public Dispatch {
 public:
  // A position that hosts and scripts keep here; the engine never moves it.
  std::int32_t curIndex = 0;

  // The language files of a run. Load reads a file's header (the root's
  // id, desc and version; names without regard to case) and appends a
  // record; AGPVars().LanguageVersion becomes its version. A file that does
  // not load as XML gives false and changes nothing but LoadError().
  bool Load(const std::string& file);
  bool LoadExtension(const std::string& file) { return Load(file); }
  void ResetFiles() { files_.clear(); }
  // Of the first record with exactly this file name; "" when none.
  std::string GetFileId(const std::string& FileName) const;
  std::string GetFileDesc(const std::string& FileName) const;
  const std::string& LoadError() const { return loadError_; }

  // One check point of the five phrase tables (not of the files), for a
  // host's editor that may cancel its changes.
  void SaveCheckPoint();
  void RestoreCheckPoint();
  // Empties the files and all phrase tables; the check point stays.
  void InitSettings();

  // Each group below: Count and Item (a copy of the record at a position
  // from 1; others raise "Subscript out of range"), Get (the phrase of the
  // first match, else ""), Set (replaces the phrase of the first match,
  // else appends; an empty phrase is stored like any other), Has (a record
  // of any language has this attribute) and Reset (removes the attribute in
  // all languages).
  std::int32_t ProjectCount() const { return tables_.project.count(); }
  Ref<AGProjectPhrase> ProjectItem(std::int32_t index) const;
  std::string GetProjectPhrase(const std::string& languageId, const std::string& attribute) const;
  void SetProjectPhrase(const std::string& languageId, const std::string& attribute,
                        const std::string& phrase);
  bool HasProjectPhrase(const std::string& attribute) const;
  void ResetProjectPhrase(const std::string& attribute);

  std::int32_t MenuCount() const { return tables_.menu.count(); }
  Ref<AGMenuPhrase> MenuItem(std::int32_t index) const;
  std::string GetMenuPhrase(const std::string& languageId, const std::string& menuId,
                            const std::string& attribute) const;
  void SetMenuPhrase(const std::string& languageId, const std::string& menuId,
                     const std::string& attribute, const std::string& phrase);
  bool HasMenuPhrase(const std::string& attribute) const;
  void ResetMenuPhrase(const std::string& attribute);
  // Removes every record of the menu item.
  void DeleteMenuPhrase(const std::string& menuId);

  std::int32_t TableCount() const { return tables_.table.count(); }
  Ref<AGTablePhrase> TableItem(std::int32_t index) const;
  // Every table and field record of the table takes the new name.
  void RenameTable(const Variant& oldName, const Variant& newName);
  std::string GetTablePhrase(const std::string& languageId, const std::string& tableName,
                             const std::string& attribute) const;
  void SetTablePhrase(const std::string& languageId, const std::string& tableName,
                      const std::string& attribute, const std::string& phrase);
  bool HasTablePhrase(const std::string& attribute) const;
  void ResetTablePhrase(const std::string& attribute);
  // Removes the table's own records; those of its fields stay.
  void DeleteTablePhrase(const std::string& tableName);

  std::int32_t FieldCount() const { return tables_.field.count(); }
  Ref<AGFieldPhrase> FieldItem(std::int32_t index) const;
  void RenameField(const Variant& tableName, const Variant& oldName, const Variant& newName);
  std::string GetFieldPhrase(const std::string& languageId, const std::string& tableName,
                             const std::string& fieldName, const std::string& attribute) const;
  void SetFieldPhrase(const std::string& languageId, const std::string& tableName,
                      const std::string& fieldName, const std::string& attribute,
                      const std::string& phrase);
  bool HasFieldPhrase(const std::string& attribute) const;
  void ResetFieldPhrase(const std::string& attribute);
  void DeleteFieldPhrase(const std::string& tableName, const std::string& fieldName);

  // The free phrase list; ids compare without regard to case.
  std::int32_t Count() const { return static_cast<std::int32_t>(tables_.phrases.size()); }
  std::string Phrase(const std::string& id) const;
  // False, changing nothing, when the id is present already.
  bool AddPhrase(const std::string& sId, const std::string& sPhrase);
  // False when the id is not present.
  bool ReplacePhrase(const std::string& sId, const std::string& sPhrase);

  // The records for C++ callers that walk a whole table (the project writer).
  const std::vector<AGProjectPhrase>& projectPhrases() const { return tables_.project.records(); }
  const std::vector<AGMenuPhrase>& menuPhrases() const { return tables_.menu.records(); }
  const std::vector<AGTablePhrase>& tablePhrases() const { return tables_.table.records(); }
  const std::vector<AGFieldPhrase>& fieldPhrases() const { return tables_.field.records(); }

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPLanguage"; }

 private:
  // The tables that the check point copies.
  struct Tables {
    PhraseTable<AGProjectPhrase> project;
    PhraseTable<AGMenuPhrase> menu;
    PhraseTable<AGTablePhrase> table;
    PhraseTable<AGFieldPhrase> field;
    std::vector<PhraseRecord> phrases;
  };

  const LanguageFileRecord* fileRecord(const std::string& fileName) const;

  std::vector<LanguageFileRecord> files_;
  std::string loadError_;
  Tables tables_;
  Tables checkPoint_;
};

// The project's one phrase store, created on first use.
AGPLanguage& Language();

}  // namespace bw
