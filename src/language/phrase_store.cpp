#include "language/phrase_store.h"

#include <algorithm>
#include <pugixml.hpp>

#include "core/agp_vars.h"
#include "core/automation_error.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/xml.h"

namespace bw {
namespace {

// Positions from 1 to the count; anything else is the caller's mistake.
template <typename Record>
Ref<Record> copyAt(const PhraseTable<Record>& table, std::int32_t index) {
  if (index < 1 || index > table.count()) raiseBasicError(basic_error::kSubscriptOutOfRange);
  return make<Record>(table.records()[static_cast<std::size_t>(index - 1)]);
}

template <typename Record>
void setPhrase(PhraseTable<Record>& table, Record record) {
  if (Record* found = table.find(IdentityOf(record)))
    found->Phrase = std::move(record.Phrase);
  else
    table.append(std::move(record));
}

// The free list's entry with this id, without regard to case.
template <typename Phrases>
auto* findPhrase(Phrases& phrases, const std::string& id) {
  auto it =
      std::ranges::find_if(phrases, [&](const PhraseRecord& p) { return text::iequals(p.Id, id); });
  return it == phrases.end() ? nullptr : &*it;
}

// Whether a record holds `value` in its field `member`.
template <typename Record>
bool anyWith(const PhraseTable<Record>& table, std::string Record::*member,
             const std::string& value) {
  return std::ranges::any_of(table.records(), [&](const Record& r) { return r.*member == value; });
}

// Removes the records that hold `value` in their field `member`.
template <typename Record>
void removeWith(PhraseTable<Record>& table, std::string Record::*member, const std::string& value) {
  table.removeIf([&](const Record& r) { return r.*member == value; });
}

template <typename Record>
std::string phraseOf(const PhraseTable<Record>& table,
                     const typename PhraseTable<Record>::Identity& identity) {
  const Record* found = table.find(identity);
  return found ? found->Phrase : std::string();
}

}  // namespace

// ---------------------------------------------------------------------------
// The records as scripts see them

const MemberTable& AGProjectPhrase::members() const {
  using P = AGProjectPhrase;
  static const MemberTable table{
      field<&P::LanguageId>("LanguageId"),
      field<&P::ProjectAttribute>("ProjectAttribute"),
      field<&P::Phrase>("Phrase"),
  };
  return table;
}

const MemberTable& AGMenuPhrase::members() const {
  using P = AGMenuPhrase;
  static const MemberTable table{
      field<&P::LanguageId>("LanguageId"),
      field<&P::MenuId>("MenuId"),
      field<&P::MenuAttribute>("MenuAttribute"),
      field<&P::Phrase>("Phrase"),
  };
  return table;
}

const MemberTable& AGTablePhrase::members() const {
  using P = AGTablePhrase;
  static const MemberTable table{
      field<&P::LanguageId>("LanguageId"),
      field<&P::TableName>("TableName"),
      field<&P::TableAttribute>("TableAttribute"),
      field<&P::Phrase>("Phrase"),
  };
  return table;
}

const MemberTable& AGFieldPhrase::members() const {
  using P = AGFieldPhrase;
  static const MemberTable table{
      field<&P::LanguageId>("LanguageId"), field<&P::TableName>("TableName"),
      field<&P::FieldName>("FieldName"),   field<&P::FieldAttribute>("FieldAttribute"),
      field<&P::Phrase>("Phrase"),
  };
  return table;
}

// ---------------------------------------------------------------------------
// Language files of a run

// Only the header is read: the file itself is the source of the language
// file output, so its phrases never enter the store.
bool AGPLanguage::Load(const std::string& file) {
  pugi::xml_document doc;
  if (!xml::loadFile(doc, file)) {
    loadError_ = "Load language file failed!";
    return false;
  }
  const pugi::xml_node root = doc.document_element();
  AGPVars().LanguageVersion = xml::attributeNoCase(root, "version");
  files_.push_back({xml::attributeNoCase(root, "id"), xml::attributeNoCase(root, "desc"),
                    files::fileNameOf(file)});
  return true;
}

// Extensions all name their file "lang.xml", so a name may be present more
// than once; the first record is the one that counts.
const LanguageFileRecord* AGPLanguage::fileRecord(const std::string& fileName) const {
  for (const LanguageFileRecord& record : files_)
    if (record.FileName == fileName) return &record;
  return nullptr;
}

std::string AGPLanguage::GetFileId(const std::string& FileName) const {
  const LanguageFileRecord* record = fileRecord(FileName);
  return record ? record->Id : std::string();
}

std::string AGPLanguage::GetFileDesc(const std::string& FileName) const {
  const LanguageFileRecord* record = fileRecord(FileName);
  return record ? record->Desc : std::string();
}

void AGPLanguage::SaveCheckPoint() {
  checkPoint_ = tables_;
}

void AGPLanguage::RestoreCheckPoint() {
  tables_ = checkPoint_;
}

void AGPLanguage::InitSettings() {
  files_.clear();
  tables_ = Tables();
}

// ---------------------------------------------------------------------------
// Project phrases

Ref<AGProjectPhrase> AGPLanguage::ProjectItem(std::int32_t index) const {
  return copyAt(tables_.project, index);
}

std::string AGPLanguage::GetProjectPhrase(const std::string& languageId,
                                          const std::string& attribute) const {
  return phraseOf(tables_.project, {languageId, attribute});
}

void AGPLanguage::SetProjectPhrase(const std::string& languageId, const std::string& attribute,
                                   const std::string& phrase) {
  setPhrase(tables_.project, AGProjectPhrase(languageId, attribute, phrase));
}

bool AGPLanguage::HasProjectPhrase(const std::string& attribute) const {
  return anyWith(tables_.project, &AGProjectPhrase::ProjectAttribute, attribute);
}

void AGPLanguage::ResetProjectPhrase(const std::string& attribute) {
  removeWith(tables_.project, &AGProjectPhrase::ProjectAttribute, attribute);
}

// ---------------------------------------------------------------------------
// Menu phrases

Ref<AGMenuPhrase> AGPLanguage::MenuItem(std::int32_t index) const {
  return copyAt(tables_.menu, index);
}

std::string AGPLanguage::GetMenuPhrase(const std::string& languageId, const std::string& menuId,
                                       const std::string& attribute) const {
  return phraseOf(tables_.menu, {languageId, menuId, attribute});
}

void AGPLanguage::SetMenuPhrase(const std::string& languageId, const std::string& menuId,
                                const std::string& attribute, const std::string& phrase) {
  setPhrase(tables_.menu, AGMenuPhrase(languageId, menuId, attribute, phrase));
}

bool AGPLanguage::HasMenuPhrase(const std::string& attribute) const {
  return anyWith(tables_.menu, &AGMenuPhrase::MenuAttribute, attribute);
}

void AGPLanguage::ResetMenuPhrase(const std::string& attribute) {
  removeWith(tables_.menu, &AGMenuPhrase::MenuAttribute, attribute);
}

void AGPLanguage::DeleteMenuPhrase(const std::string& menuId) {
  removeWith(tables_.menu, &AGMenuPhrase::MenuId, menuId);
}

// ---------------------------------------------------------------------------
// Table phrases

Ref<AGTablePhrase> AGPLanguage::TableItem(std::int32_t index) const {
  return copyAt(tables_.table, index);
}

void AGPLanguage::RenameTable(const Variant& oldName, const Variant& newName) {
  const std::string from = oldName.toText(), to = newName.toText();
  for (AGTablePhrase& p : tables_.table.mutableRecords())
    if (p.TableName == from) p.TableName = to;
  for (AGFieldPhrase& p : tables_.field.mutableRecords())
    if (p.TableName == from) p.TableName = to;
}

std::string AGPLanguage::GetTablePhrase(const std::string& languageId, const std::string& tableName,
                                        const std::string& attribute) const {
  return phraseOf(tables_.table, {languageId, tableName, attribute});
}

void AGPLanguage::SetTablePhrase(const std::string& languageId, const std::string& tableName,
                                 const std::string& attribute, const std::string& phrase) {
  setPhrase(tables_.table, AGTablePhrase(languageId, tableName, attribute, phrase));
}

bool AGPLanguage::HasTablePhrase(const std::string& attribute) const {
  return anyWith(tables_.table, &AGTablePhrase::TableAttribute, attribute);
}

void AGPLanguage::ResetTablePhrase(const std::string& attribute) {
  removeWith(tables_.table, &AGTablePhrase::TableAttribute, attribute);
}

void AGPLanguage::DeleteTablePhrase(const std::string& tableName) {
  removeWith(tables_.table, &AGTablePhrase::TableName, tableName);
}

// ---------------------------------------------------------------------------
// Field phrases

Ref<AGFieldPhrase> AGPLanguage::FieldItem(std::int32_t index) const {
  return copyAt(tables_.field, index);
}

void AGPLanguage::RenameField(const Variant& tableName, const Variant& oldName,
                              const Variant& newName) {
  const std::string table = tableName.toText(), from = oldName.toText(), to = newName.toText();
  for (AGFieldPhrase& p : tables_.field.mutableRecords())
    if (p.TableName == table && p.FieldName == from) p.FieldName = to;
}

std::string AGPLanguage::GetFieldPhrase(const std::string& languageId, const std::string& tableName,
                                        const std::string& fieldName,
                                        const std::string& attribute) const {
  return phraseOf(tables_.field, {languageId, tableName, fieldName, attribute});
}

void AGPLanguage::SetFieldPhrase(const std::string& languageId, const std::string& tableName,
                                 const std::string& fieldName, const std::string& attribute,
                                 const std::string& phrase) {
  setPhrase(tables_.field, AGFieldPhrase(languageId, tableName, fieldName, attribute, phrase));
}

bool AGPLanguage::HasFieldPhrase(const std::string& attribute) const {
  return anyWith(tables_.field, &AGFieldPhrase::FieldAttribute, attribute);
}

void AGPLanguage::ResetFieldPhrase(const std::string& attribute) {
  removeWith(tables_.field, &AGFieldPhrase::FieldAttribute, attribute);
}

void AGPLanguage::DeleteFieldPhrase(const std::string& tableName, const std::string& fieldName) {
  tables_.field.removeIf(
      [&](const AGFieldPhrase& p) { return p.TableName == tableName && p.FieldName == fieldName; });
}

// ---------------------------------------------------------------------------
// The free phrase list

std::string AGPLanguage::Phrase(const std::string& id) const {
  const PhraseRecord* record = findPhrase(tables_.phrases, id);
  return record ? record->Text : std::string();
}

bool AGPLanguage::AddPhrase(const std::string& sId, const std::string& sPhrase) {
  if (findPhrase(tables_.phrases, sId)) return false;
  tables_.phrases.push_back({sId, sPhrase});
  return true;
}

bool AGPLanguage::ReplacePhrase(const std::string& sId, const std::string& sPhrase) {
  PhraseRecord* record = findPhrase(tables_.phrases, sId);
  if (!record) return false;
  record->Text = sPhrase;
  return true;
}

const MemberTable& AGPLanguage::members() const {
  using L = AGPLanguage;
  static const MemberTable table{
      method<&L::GetFileId>("GetFileId"),
      method<&L::GetFileDesc>("GetFileDesc"),
      method<&L::ResetFiles>("ResetFiles"),
      method<&L::SaveCheckPoint>("SaveCheckPoint"),
      method<&L::RestoreCheckPoint>("RestoreCheckPoint"),
      property<&L::ProjectCount>("ProjectCount"),
      property<&L::ProjectItem>("ProjectItem"),
      method<&L::GetProjectPhrase>("GetProjectPhrase"),
      method<&L::SetProjectPhrase>("SetProjectPhrase"),
      method<&L::HasProjectPhrase>("HasProjectPhrase"),
      method<&L::ResetProjectPhrase>("ResetProjectPhrase"),
      property<&L::MenuCount>("MenuCount"),
      property<&L::MenuItem>("MenuItem"),
      method<&L::GetMenuPhrase>("GetMenuPhrase"),
      method<&L::SetMenuPhrase>("SetMenuPhrase"),
      method<&L::HasMenuPhrase>("HasMenuPhrase"),
      method<&L::ResetMenuPhrase>("ResetMenuPhrase"),
      method<&L::DeleteMenuPhrase>("DeleteMenuPhrase"),
      property<&L::TableCount>("TableCount"),
      property<&L::TableItem>("TableItem"),
      method<&L::RenameTable>("RenameTable"),
      method<&L::GetTablePhrase>("GetTablePhrase"),
      method<&L::SetTablePhrase>("SetTablePhrase"),
      method<&L::HasTablePhrase>("HasTablePhrase"),
      method<&L::ResetTablePhrase>("ResetTablePhrase"),
      method<&L::DeleteTablePhrase>("DeleteTablePhrase"),
      property<&L::FieldCount>("FieldCount"),
      property<&L::FieldItem>("FieldItem"),
      method<&L::RenameField>("RenameField"),
      method<&L::GetFieldPhrase>("GetFieldPhrase"),
      method<&L::SetFieldPhrase>("SetFieldPhrase"),
      method<&L::HasFieldPhrase>("HasFieldPhrase"),
      method<&L::ResetFieldPhrase>("ResetFieldPhrase"),
      method<&L::DeleteFieldPhrase>("DeleteFieldPhrase"),
      field<&L::curIndex>("curIndex"),
      property<&L::Count>("Count"),
      method<&L::Phrase>("Phrase"),
      method<&L::AddPhrase>("AddPhrase"),
      method<&L::ReplacePhrase>("ReplacePhrase"),
      method<&L::Load>("Load"),
      method<&L::LoadExtension>("LoadExtension"),
      method<&L::InitSettings>("InitSettings"),
  };
  return table;
}

AGPLanguage& Language() {
  Ref<Dispatch>& slot = AGPVars().Language;
  if (!slot) slot = make<AGPLanguage>();
  return static_cast<AGPLanguage&>(*slot);
}

}  // namespace bw
