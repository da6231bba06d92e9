#include "language/phrase_store.h"

#include <algorithm>

#include <pugixml.hpp>

#include "core/agp_vars.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/xml.h"

namespace bw {
namespace {

template <typename Record, typename Match>
Record* firstMatch(std::vector<Record>& records, Match match) {
  auto it = std::find_if(records.begin(), records.end(), match);
  return it == records.end() ? nullptr : &*it;
}

}  // namespace

bool AGPLanguage::Load(const std::string& file) {
  pugi::xml_document doc;
  if (!xml::loadFile(doc, file)) {
    loadError_ = "Load language file failed!";
    return false;
  }
  const pugi::xml_node root = doc.document_element();
  AGPVars().LanguageVersion = xml::attributeNoCase(root, "version");
  files_.push_back({xml::attributeNoCase(root, "id"), xml::attributeNoCase(root, "desc"), files::fileNameOf(file)});
  return true;
}

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

void AGPLanguage::SetProjectPhrase(const std::string& languageId, const std::string& attribute,
                                   const std::string& phrase) {
  ProjectPhrase* found = firstMatch(projects_, [&](const ProjectPhrase& p) {
    return p.LanguageId == languageId && p.ProjectAttribute == attribute;
  });
  if (found)
    found->Phrase = phrase;
  else
    projects_.push_back({languageId, attribute, phrase});
}

void AGPLanguage::SetMenuPhrase(const std::string& languageId, const std::string& menuId,
                                const std::string& attribute, const std::string& phrase) {
  MenuPhrase* found = firstMatch(menus_, [&](const MenuPhrase& p) {
    return p.LanguageId == languageId && p.MenuId == menuId && p.MenuAttribute == attribute;
  });
  if (found)
    found->Phrase = phrase;
  else
    menus_.push_back({languageId, menuId, attribute, phrase});
}

std::string AGPLanguage::GetTablePhrase(const std::string& languageId, const std::string& tableName,
                                        const std::string& attribute) const {
  for (const TablePhrase& p : tables_)
    if (p.LanguageId == languageId && p.TableName == tableName && p.TableAttribute == attribute)
      return p.Phrase;
  return "";
}

void AGPLanguage::SetTablePhrase(const std::string& languageId, const std::string& tableName,
                                 const std::string& attribute, const std::string& phrase) {
  TablePhrase* found = firstMatch(tables_, [&](const TablePhrase& p) {
    return p.LanguageId == languageId && p.TableName == tableName && p.TableAttribute == attribute;
  });
  if (found)
    found->Phrase = phrase;
  else
    tables_.push_back({languageId, tableName, attribute, phrase});
}

void AGPLanguage::RenameTable(const Variant& oldName, const Variant& newName) {
  const std::string from = oldName.toText(), to = newName.toText();
  for (TablePhrase& p : tables_)
    if (p.TableName == from) p.TableName = to;
  for (FieldPhrase& p : fields_)
    if (p.TableName == from) p.TableName = to;
}

void AGPLanguage::DeleteTablePhrase(const std::string& tableName) {
  std::erase_if(tables_, [&](const TablePhrase& p) { return p.TableName == tableName; });
}

std::string AGPLanguage::GetFieldPhrase(const std::string& languageId, const std::string& tableName,
                                        const std::string& fieldName,
                                        const std::string& attribute) const {
  for (const FieldPhrase& p : fields_)
    if (p.LanguageId == languageId && p.TableName == tableName && p.FieldName == fieldName &&
        p.FieldAttribute == attribute)
      return p.Phrase;
  return "";
}

void AGPLanguage::SetFieldPhrase(const std::string& languageId, const std::string& tableName,
                                 const std::string& fieldName, const std::string& attribute,
                                 const std::string& phrase) {
  FieldPhrase* found = firstMatch(fields_, [&](const FieldPhrase& p) {
    return p.LanguageId == languageId && p.TableName == tableName && p.FieldName == fieldName &&
           p.FieldAttribute == attribute;
  });
  if (found)
    found->Phrase = phrase;
  else
    fields_.push_back({languageId, tableName, fieldName, attribute, phrase});
}

void AGPLanguage::RenameField(const Variant& tableName, const Variant& oldName, const Variant& newName) {
  const std::string table = tableName.toText(), from = oldName.toText(), to = newName.toText();
  for (FieldPhrase& p : fields_)
    if (p.TableName == table && p.FieldName == from) p.FieldName = to;
}

void AGPLanguage::DeleteFieldPhrase(const std::string& tableName, const std::string& fieldName) {
  std::erase_if(fields_, [&](const FieldPhrase& p) {
    return p.TableName == tableName && p.FieldName == fieldName;
  });
}

const MemberTable& AGPLanguage::members() const {
  using L = AGPLanguage;
  static const MemberTable table{
      method<&L::GetFileId>("GetFileId"),
      method<&L::GetFileDesc>("GetFileDesc"),
      method<&L::ResetFiles>("ResetFiles"),
      method<&L::Load>("Load"),
      method<&L::LoadExtension>("LoadExtension"),
      property<&L::TableCount>("TableCount"),
      method<&L::GetTablePhrase>("GetTablePhrase"),
      method<&L::SetTablePhrase>("SetTablePhrase"),
      method<&L::RenameTable>("RenameTable"),
      method<&L::DeleteTablePhrase>("DeleteTablePhrase"),
      property<&L::FieldCount>("FieldCount"),
      method<&L::GetFieldPhrase>("GetFieldPhrase"),
      method<&L::SetFieldPhrase>("SetFieldPhrase"),
      method<&L::RenameField>("RenameField"),
      method<&L::DeleteFieldPhrase>("DeleteFieldPhrase"),
  };
  return table;
}

AGPLanguage& Language() {
  Ref<Dispatch>& slot = AGPVars().Language;
  if (!slot) slot = make<AGPLanguage>();
  return static_cast<AGPLanguage&>(*slot);
}

}  // namespace bw
