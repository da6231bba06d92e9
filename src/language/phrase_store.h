// AGPLanguage: the project's translations of table and field captions.
//
// This is the part of the phrase store that the definition model needs:
// table and field phrases as plain records, and the renames and deletions
// that follow a table or field when it is renamed or deleted. Names compare
// exactly, case included, as the phrases were stored.
#pragma once

#include <string>
#include <vector>

#include "core/dispatch.h"

namespace bw {

struct ProjectPhrase {
  std::string LanguageId, ProjectAttribute, Phrase;
};
struct MenuPhrase {
  std::string LanguageId, MenuId, MenuAttribute, Phrase;
};
struct TablePhrase {
  std::string LanguageId, TableName, TableAttribute, Phrase;
};

// A language file loaded for the current run: its id and description, and
// the file name they were read from.
struct LanguageFileRecord {
  std::string Id, Desc, FileName;
};

struct FieldPhrase {
  std::string LanguageId, TableName, FieldName, FieldAttribute, Phrase;
};

class AGPLanguage : public Dispatch {
 public:
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

  // Project and menu phrases: replaced when the names match, else appended.
  void SetProjectPhrase(const std::string& languageId, const std::string& attribute,
                        const std::string& phrase);
  void SetMenuPhrase(const std::string& languageId, const std::string& menuId,
                     const std::string& attribute, const std::string& phrase);
  const std::vector<ProjectPhrase>& projectPhrases() const { return projects_; }
  const std::vector<MenuPhrase>& menuPhrases() const { return menus_; }

  std::int32_t TableCount() const { return static_cast<std::int32_t>(tables_.size()); }
  std::string GetTablePhrase(const std::string& languageId, const std::string& tableName,
                             const std::string& attribute) const;
  // Replaces the phrase of the first record with these three names, else appends.
  void SetTablePhrase(const std::string& languageId, const std::string& tableName,
                      const std::string& attribute, const std::string& phrase);
  // Every table and field record of the table takes the new name.
  void RenameTable(const Variant& oldName, const Variant& newName);
  // Removes the table's own records; those of its fields stay.
  void DeleteTablePhrase(const std::string& tableName);

  std::int32_t FieldCount() const { return static_cast<std::int32_t>(fields_.size()); }
  std::string GetFieldPhrase(const std::string& languageId, const std::string& tableName,
                             const std::string& fieldName, const std::string& attribute) const;
  void SetFieldPhrase(const std::string& languageId, const std::string& tableName,
                      const std::string& fieldName, const std::string& attribute,
                      const std::string& phrase);
  void RenameField(const Variant& tableName, const Variant& oldName, const Variant& newName);
  void DeleteFieldPhrase(const std::string& tableName, const std::string& fieldName);

  const std::vector<TablePhrase>& tablePhrases() const { return tables_; }
  const std::vector<FieldPhrase>& fieldPhrases() const { return fields_; }

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPLanguage"; }

 private:
  const LanguageFileRecord* fileRecord(const std::string& fileName) const;

  std::vector<LanguageFileRecord> files_;
  std::string loadError_;
  std::vector<ProjectPhrase> projects_;
  std::vector<MenuPhrase> menus_;
  std::vector<TablePhrase> tables_;
  std::vector<FieldPhrase> fields_;
};

// The project's one phrase store, created on first use.
AGPLanguage& Language();

}  // namespace bw
