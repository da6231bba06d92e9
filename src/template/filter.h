// AGPFilter: the interface of an advanced filter list: groups of named
// options, each with a filter expression and an order within its group.
//
// Nothing in the engine feeds it: Load starts the list empty, and a host
// that has filters of its own adds them with AddOption.
#pragma once

#include <string>
#include <vector>

#include "core/dispatch.h"

namespace bw {

class AGPFilter : public Dispatch {
 public:
  std::int32_t GroupCount() const { return static_cast<std::int32_t>(groups_.size()); }
  std::string GroupName(const Variant& order) const;
  std::int32_t OptionCount(const Variant& groupName) const;
  std::string OptionName(const Variant& groupName, const Variant& order) const;
  std::string Expression(const Variant& groupName, const Variant& order) const;
  void Load();

  // Appends an option; its group is added when new (groups compare
  // without regard to case).
  void AddOption(const std::string& group, const std::string& name,
                 const std::string& expression, std::int32_t order);

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPFilter"; }

 private:
  struct Option {
    std::string group, name, expression;
    std::int32_t order;
  };
  const Option* findOption(const Variant& groupName, const Variant& order) const;

  std::vector<std::string> groups_;
  std::vector<Option> options_;
};

}  // namespace bw
