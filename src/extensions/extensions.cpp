#include "extensions/extensions.h"

#include "core/agp_vars.h"
#include "platform/text.h"

namespace bw {

template <typename Visit>
void AGPExtensions::forEachTableEntry(const std::string& name, Visit visit) {
  for (Extension& extension : extensions_)
    for (ExtensionTable& table : extension.tables)
      if (text::iequals(table.TblName, name)) visit(table);
}

void AGPExtensions::RenameTable(const std::string& oldName, const std::string& newName) {
  forEachTableEntry(oldName, [&](ExtensionTable& table) { table.TblName = newName; });
}

void AGPExtensions::RenameField(const std::string& tableName, const std::string& oldName,
                                const std::string& newName) {
  forEachTableEntry(tableName, [&](ExtensionTable& table) {
    for (std::string& field : table.fields)
      if (text::iequals(field, oldName)) field = newName;
  });
}

void AGPExtensions::RemoveTable(const std::string& name) {
  for (Extension& extension : extensions_)
    std::erase_if(extension.tables, [&](const ExtensionTable& t) { return text::iequals(t.TblName, name); });
}

void AGPExtensions::RemoveField(const std::string& tableName, const std::string& fieldName) {
  forEachTableEntry(tableName, [&](ExtensionTable& table) {
    std::erase_if(table.fields, [&](const std::string& f) { return text::iequals(f, fieldName); });
  });
}

const MemberTable& AGPExtensions::members() const {
  static const MemberTable table{method<&AGPExtensions::Count>("Count")};
  return table;
}

AGPExtensions& Extensions() {
  Ref<Dispatch>& slot = AGPVars().Extensions;
  if (!slot) slot = make<AGPExtensions>();
  return static_cast<AGPExtensions&>(*slot);
}

}  // namespace bw
