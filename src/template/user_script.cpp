#include "template/user_script.h"

#include <algorithm>

#include "platform/text.h"

namespace bw {

// The placeholder at 0 is no module: "" exists only once it was added.
bool AGUserScript::UserModuleExist(const std::string& sModule) const {
  return std::any_of(modules_.begin() + 1, modules_.end(),
                     [&](const std::string& name) { return text::iequals(name, sModule); });
}

const MemberTable& AGUserScript::members() const {
  static const MemberTable table{
      method<&AGUserScript::AddUserModule>("AddUserModule"),
      method<&AGUserScript::UserModuleExist>("UserModuleExist"),
  };
  return table;
}

}  // namespace bw
