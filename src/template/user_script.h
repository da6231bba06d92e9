// AGUserScript: a list of module names that script code or a host keeps,
// say of the user code modules it has added to a script host, to ask later
// whether one is there. Names compare without regard to case.
//
// The engine itself makes none; scripts and hosts create it when they want
// one. Entry 0 is an empty placeholder, so that the names count from 1.
#pragma once

#include <string>
#include <vector>

#include "core/dispatch.h"

namespace bw {

class AGUserScript : public Dispatch {
 public:
  AGUserScript() : modules_(1) {}

  void AddUserModule(const std::string& sModule) { modules_.push_back(sModule); }
  bool UserModuleExist(const std::string& sModule) const;

  // The names as added, from 1; entry 0 is "".
  const std::vector<std::string>& modules() const { return modules_; }

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGUserScript"; }

 private:
  std::vector<std::string> modules_;
};

}  // namespace bw
