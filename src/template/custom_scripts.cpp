#include "template/custom_scripts.h"

#include "core/agp_vars.h"
#include "platform/text.h"

namespace bw {

bool AGPCustomScripts::Change(const std::string& oldName, const std::string& newName) {
  if (oldName.empty() || newName.empty()) return false;
  for (CustomScript& script : scripts_)
    if (script.ScriptL1Key == oldName) script.ScriptL1Key = newName;
  return true;
}

void AGPCustomScripts::DeleteTableScripts(const std::string& name) {
  const bool removed = std::erase_if(scripts_, [&](const CustomScript& script) {
                         return text::iequals(script.ScriptCodeType, "Table") && script.ScriptL1Key == name;
                       }) > 0;
  // Custom scripts are part of the project file.
  if (removed) AGPVars().Dirty = true;
}

const MemberTable& AGPCustomScripts::members() const {
  static const MemberTable table{
      method<&AGPCustomScripts::Count>("Count"),
      method<&AGPCustomScripts::Change>("Change"),
  };
  return table;
}

AGPCustomScripts& CustomScripts() {
  Ref<Dispatch>& slot = AGPVars().CustomScripts;
  if (!slot) slot = make<AGPCustomScripts>();
  return static_cast<AGPCustomScripts&>(*slot);
}

}  // namespace bw
