// The generation choices: what GenCheck offers the user, and how the
// answers are kept in the project between runs.
//
// A list is stored as "id=flags,id=flags,..." in OtherGenList (the
// project's list) and TblGenList (a table's), flags being 1 for "generate"
// plus 2 for "without header and footer".
#include <unordered_set>

#include "core/control_items.h"
#include "core/fields.h"
#include "core/project.h"
#include "core/tables.h"
#include "generation/generation.h"
#include "persistence/master_details.h"
#include "platform/text.h"
#include "template/controls.h"
#include "template/project_template.h"

namespace bw {
namespace {

constexpr int kGenerate = 1;
constexpr int kSkipHeaderFooter = 2;

std::string remarkOf(const AGPControl& ctrl) {
  std::string remark = ctrl.CtrlRemark;
  if (!ctrl.CtrlExt.empty()) remark += (remark.empty() ? "(" : " (") + ctrl.CtrlExt + ")";
  return remark;
}

void applyList(AGControlItems& items, const std::string& stored) {
  const std::vector<std::string> entries = text::split(stored, ",");
  for (std::int32_t k = 1; k <= items.Count(); ++k) {
    AGControlItem& item = *items.Item(Variant(k));
    for (const std::string& entry : entries) {
      if (!entry.starts_with(item.ItemId + "=")) continue;
      const int flags = Variant(entry.substr(item.ItemId.size() + 1)).toInteger().value_or(0);
      item.ItemGen = (flags & kGenerate) != 0;
      item.ItemSkipHeaderFooter = (flags & kSkipHeaderFooter) != 0;
      break;
    }
  }
}

std::string listText(AGControlItems& items) {
  std::vector<std::string> entries;
  for (std::int32_t k = 1; k <= items.Count(); ++k) {
    const AGControlItem& item = *items.Item(Variant(k));
    const int flags = (item.ItemGen ? kGenerate : 0) + (item.ItemSkipHeaderFooter ? kSkipHeaderFooter : 0);
    entries.push_back(item.ItemId + "=" + std::to_string(flags));
  }
  return text::join(entries, ",");
}

void clearList(AGControlItems& items) {
  while (items.Count() > 0) items.Delete(Variant(1));
}

// `name`, or name_1, name_2, ... : the first that is not in `taken`.
std::string freeName(const std::string& name,
                     const std::unordered_set<std::string, text::CaseInsensitiveHash,
                                              text::CaseInsensitiveEqual>& taken) {
  if (!taken.contains(name)) return name;
  for (int n = 1;; ++n) {
    std::string candidate = name + "_" + std::to_string(n);
    if (!taken.contains(candidate)) return candidate;
  }
}

}  // namespace

void Generation::BuildControlItems() {
  AGControlItems& projectItems = *project_.ControlItems();
  for (const Ref<AGPControl>& ctrl : controls_.walk()) {
    const std::string type = text::toLower(ctrl->CtrlType);
    if (type == "function" || type == "folder" || type == "field" || type == "chart") continue;
    if (type != "table" && type != "report") {
      if (!ctrl->CtrlTagExt.empty() || !template_.EvalCondition(ctrl->CtrlCond)) continue;
      if (!projectItems.Add(ctrl->CtrlID, OutputFileName(*ctrl, "", ""), true, remarkOf(*ctrl))) continue;
      AGControlItem& item = *projectItems.Item(Variant(ctrl->CtrlID));
      item.ItemHasHeaderFooter = ctrl->CtrlHasHeaderFooter();
      if (item.ItemDest.empty()) item.ItemDest = OtherPagePath(*ctrl, true);
      continue;
    }
    if (!ctrl->CtrlTagExt.empty() || ctrl->CtrlID == "gridcls" || ctrl->CtrlID == "info") continue;
    for (AGPTable* table : GeneratedTables(*project_.DB())) {
      if (!ControlAppliesToTable(*table, *ctrl)) continue;
      const std::string name = OutputFileName(*ctrl, table->attrText("TblVar"), "");
      AGControlItems& items = *table->ControlList();
      if (!items.Add(ctrl->CtrlID, name, true, remarkOf(*ctrl))) continue;
      const std::string lower = text::toLower(name);
      AGControlItem& item = *items.Item(Variant(ctrl->CtrlID));
      item.ItemHasHeaderFooter = ctrl->CtrlID == "custom"
                                     ? table->attrBool("IncludeFiles") &&
                                           (lower.ends_with(".cshtml") || lower.ends_with(".vbhtml"))
                                     : ctrl->CtrlHasHeaderFooter();
      // Where the page would go, so that the host can tell which exist.
      item.ItemDest = TablePagePath(*table, *ctrl, true);
    }
  }
  ApplyGenLists();
}

// An item without a stored entry keeps its state: a page new in the
// template is on.
void Generation::ApplyGenLists() {
  applyList(*project_.ControlItems(), project_.attrText("OtherGenList"));
  for (AGPTable* table : GeneratedTables(*project_.DB()))
    applyList(*table->ControlList(), table->attrText("TblGenList"));
}

void Generation::SaveGenLists() {
  const std::string other = listText(*project_.ControlItems());
  if (project_.attrText("OtherGenList") != other) project_.setAttr("OtherGenList", Variant(other));
  for (AGPTable* table : GeneratedTables(*project_.DB())) {
    const std::string stored = listText(*table->ControlList());
    if (table->attrText("TblGenList") != stored) table->setAttr("TblGenList", Variant(stored));
  }
}

void Generation::ResetControlItems() {
  clearList(*project_.ControlItems());
  for (AGPTable* table : GeneratedTables(*project_.DB())) clearList(*table->ControlList());
}

std::int32_t Generation::CountGenerationItems() {
  const auto countFor = [&](AGControlItems& items) {
    std::int32_t count = 0;
    for (std::int32_t k = 1; k <= items.Count(); ++k) {
      const AGControlItem& item = *items.Item(Variant(k));
      if (!item.ItemGen) continue;
      for (const Ref<AGPControl>& ctrl : controls_.walk())
        if (ctrl->CtrlID == item.ItemId && template_.EvalCondition(ctrl->CtrlCond)) ++count;
    }
    return count;
  };
  makeCurrent(nullptr);
  std::int32_t total = countFor(*project_.ControlItems());
  for (AGPTable* table : GeneratedTables(*project_.DB())) {
    makeCurrent(table);
    total += countFor(*table->ControlList());
  }
  makeCurrent(nullptr);
  return total;
}

// The generated code declares the table's variable, its report source's,
// the variables of its master and detail tables, the database's and one
// per field in one scope; none may be spelt like another.
void Generation::MakeVarsUnique(AGPTable& table) {
  AGPTables& tables = *project_.DB()->Tables();
  const std::string var = table.attrText("TblVar");
  for (DefinitionObject* item : tables.bySequence()) {
    AGPTable& other = static_cast<AGPTable&>(*item);
    const std::string otherVar = other.attrText("TblVar");
    if (&other == &table || !IsGeneratedTable(other) || !var.starts_with(otherVar)) continue;
    for (const Ref<AGPControl>& ctrl : controls_.walk()) {
      if (ctrl->CtrlType != "table" && ctrl->CtrlType != "report") continue;
      if (var == otherVar + "_" + ctrl->CtrlID) {
        table.setAttr("TblVar", Variant(var + "_zz"));
        break;
      }
    }
    if (table.attrText("TblVar") != var) break;
  }

  std::unordered_set<std::string, text::CaseInsensitiveHash, text::CaseInsensitiveEqual> taken{
      table.attrText("TblVar")};
  if (AGPTable* source = tables.table(table.attrText("TblRptSrc"))) taken.insert(source->attrText("TblVar"));
  for (const AGPMasterDetail* md : MasterDetails().items()) {
    AGPTable* master = tables.table(md->MasterTable());
    AGPTable* detail = tables.table(md->DetailTable());
    if (!master || !detail) continue;
    if (master == &table) taken.insert(detail->attrText("TblVar"));
    if (detail == &table) taken.insert(master->attrText("TblVar"));
  }

  AGPDatabase& db = *project_.DB();
  const std::string dbVar = db.attrText("DBVar");
  const std::string freeDbVar = freeName(dbVar, taken);
  taken.insert(freeDbVar);
  if (freeDbVar != dbVar) db.setAttr("DBVar", Variant(freeDbVar));

  AGPFields& fields = *table.Fields();
  for (std::int32_t f = 0; f < fields.Count(); ++f) {
    AGPField& field = static_cast<AGPField&>(fields.at(f));
    const std::string parm = field.FldParm();
    const std::string free = freeName(parm, taken);
    if (free != parm) field.setAttr("FldVar", Variant("x_" + free));
    taken.insert(free);
  }
}

}  // namespace bw
