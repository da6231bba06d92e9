#include "core/tables.h"

#include "core/agp_vars.h"
#include "core/attribute_members.h"
#include "core/definition_attributes.h"
#include "core/definition_listener.h"
#include "core/names.h"
#include "platform/text.h"

namespace bw {

// ---------------------------------------------------------------------------
// AGPTable

AGPTable::AGPTable() : DefinitionObject(TableLayout(), AGPVars().RegTable), fields_(make<AGPFields>()) {}

Ref<AGControlItems> AGPTable::ControlList() {
  if (!controlList_) controlList_ = make<AGControlItems>();
  return controlList_;
}

void AGPTable::setTblGen(bool generate) {
  setAttr("TblGen", Variant(generate));
  setAttr("TblGenList", Variant(""));
  AGPVars().definitionListener->tableGenerationChanged(TblName(), generate);
}

void AGPTable::setTblCaption(const std::string& caption) {
  setAttr("TblCaption", Variant(caption));
  AGPVars().definitionListener->tableCaptionChanged(TblName(), caption);
}

namespace {

// A report's users get of each permission mask only the bit 8: in every
// ";" entry with at least three "," items, the third is masked.
std::string reportSecurity(const std::string& security) {
  std::vector<std::string> entries = text::split(security, ";");
  for (std::string& entry : entries) {
    std::vector<std::string> items = text::split(entry, ",");
    if (items.size() < 3) continue;
    items[2] = std::to_string(Variant(items[2]).toLong().value_or(0) & 8);
    entry = text::join(items, ",");
  }
  return text::join(entries, ";");
}

}  // namespace

void AGPTable::LoadTableDefault() {
  const std::string name = TblName();
  const std::string type = attrText("TblType");
  const bool isTable = type == "TABLE";
  const bool isReport = type == "REPORT";
  setAttr("TblCaption", Variant(CaptionFromName(name)));
  setAttr("TblVar", Variant(MakeVarName(name, "")));
  setAttr("TblDefault", Variant(false));
  setAttr("TblList", Variant(true));
  for (const char* page : {"TblView", "TblAdd", "TblEdit", "TblDelete", "TblCopy"})
    setAttr(page, Variant(isTable));
  if (isTable) setAttr("TblSQL", Variant(""));
  setAttr("TblAddOpt", Variant(false));
  setAttr("TblUpdatable", Variant(!isReport));
  const std::string security = AGPVars().SecDefault.toText();
  setAttr("TblSrchType", Variant(isReport ? "NONE" : "BASIC"));
  setAttr("TblSecurity", Variant(isReport ? reportSecurity(security) : security));
  setAttr("TblUserIDAllow", Variant(std::int16_t{0}));
  setAttr("TblUserLevelPriv", Variant(true));
  setAttr("TblDisplayRowCount", Variant(false));
  for (const char* option : {"TblUseButtonsForLinks", "TblUseDropDownForAction",
                             "TblUseDropDownForListOptions", "TblUseDropDownForExport"})
    setAttr(option, Variant(true));
}

const MemberTable& AGPTable::members() const {
  static const MemberTable table = [] {
    using T = AGPTable;
    MemberTable t{
        property<&T::Properties>("Properties"),
        method<&T::GetV>("GetV"),
        method<&T::SetV>("SetV"),
        property<&T::Key, &T::setKey>("Key"),
        property<&T::Fields>("Fields"),
        property<&T::ControlList>("ControlList"),
        property<&T::TblGen, &T::setTblGen>("TblGen"),
        property<&T::TblCaption, &T::setTblCaption>("TblCaption"),
        method<&T::LoadTableDefault>("LoadTableDefault"),
    };
    AddAttributeMembers<T>(t, *TableLayout());
    return t;
  }();
  return table;
}

// ---------------------------------------------------------------------------
// AGPTables

namespace {

constexpr ListAttributes kTableNames{"TblName", "TblSeq", "TblVar", ""};

}  // namespace

AGPTables::AGPTables() : DefinitionList(kTableNames) {}

Ref<DefinitionObject> AGPTables::createItem() const { return make<AGPTable>(); }

bool AGPTables::Add(const std::string& name) {
  if (name.empty() || TableExist(Variant(name))) return false;
  if (auto existing = differentlyCasedName(name)) return Change(*existing, name);
  appendNew(name, false);
  return true;
}

AGPTable* AGPTables::appendLoaded(const std::string& name) {
  if (name.empty() || TableExist(Variant(name))) return nullptr;
  return static_cast<AGPTable*>(&appendNew(name, true));
}

bool AGPTables::Change(const std::string& oldName, const std::string& newName) {
  switch (rekey(oldName, newName)) {
    case Rename::Refused:
      return false;
    case Rename::SameName:
      return true;
    case Rename::Renamed:
      break;
  }
  AGPVars().definitionListener->tableRenamed(oldName, newName);
  return true;
}

bool AGPTables::Delete(const std::string& index) {
  DefinitionObject* found = itemToDelete(index);
  if (!found) return false;
  Ref<AGPTable> table = refTo(static_cast<AGPTable*>(found));
  const std::string name = table->TblName();
  closeSequenceGap(*table);
  AGPVars().definitionListener->tableDeleted(name, index);
  remove(index);
  // A table that goes takes its fields, and their phrases and extension
  // entries, with it. This runs here rather than when the last reference
  // goes, so that a script holding the table cannot delay it.
  table->Fields()->deleteAll(name);
  return true;
}

void AGPTables::rebuildVariableNames() {
  DefinitionList::rebuildVariableNames();
  for (std::int32_t offset = 0; offset < Count(); ++offset) {
    AGPTable& table = tableAt(offset);
    if (table.attrBool("TblLoaded")) table.Fields()->rebuildVariableNames();
  }
}

const MemberTable& AGPTables::members() const {
  using T = AGPTables;
  static const MemberTable table{
      {
          method<&T::Add>("Add"),
          method<&T::Change>("Change"),
          method<&T::Delete>("Delete"),
          method<&T::TableExist>("TableExist"),
          method<&T::newEnum>("NewEnum_tbl"),
      },
      listMembers()};
  return table;
}

}  // namespace bw
