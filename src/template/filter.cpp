#include "template/filter.h"

#include "platform/text.h"

namespace bw {

void AGPFilter::Load() {
  groups_.clear();
  options_.clear();
}

void AGPFilter::AddOption(const std::string& group, const std::string& name,
                          const std::string& expression, std::int32_t order) {
  bool known = false;
  for (const std::string& g : groups_) known = known || text::iequals(g, group);
  if (!known) groups_.push_back(group);
  options_.push_back({group, name, expression, order});
}

std::string AGPFilter::GroupName(const Variant& order) const {
  auto position = order.toLong();
  if (!position || *position < 1 || *position > GroupCount()) return {};
  return groups_[static_cast<std::size_t>(*position - 1)];
}

std::int32_t AGPFilter::OptionCount(const Variant& groupName) const {
  const std::string group = groupName.toText();
  std::int32_t n = 0;
  for (const Option& o : options_) n += text::iequals(o.group, group) ? 1 : 0;
  return n;
}

const AGPFilter::Option* AGPFilter::findOption(const Variant& groupName,
                                               const Variant& order) const {
  const std::string group = groupName.toText();
  auto wanted = order.toLong();
  if (!wanted) return nullptr;
  for (const Option& o : options_)
    if (text::iequals(o.group, group) && o.order == *wanted) return &o;
  return nullptr;
}

std::string AGPFilter::OptionName(const Variant& groupName, const Variant& order) const {
  const Option* o = findOption(groupName, order);
  return o ? o->name : std::string();
}

std::string AGPFilter::Expression(const Variant& groupName, const Variant& order) const {
  const Option* o = findOption(groupName, order);
  return o ? o->expression : std::string();
}

const MemberTable& AGPFilter::members() const {
  static const MemberTable table{
      property<&AGPFilter::GroupCount>("GroupCount"),
      property<&AGPFilter::GroupName>("GroupName"),
      property<&AGPFilter::OptionCount>("OptionCount"),
      property<&AGPFilter::OptionName>("OptionName"),
      property<&AGPFilter::Expression>("Expression"),
      method<&AGPFilter::Load>("Load"),
      method<&AGPFilter::AddOption>("AddOption"),
  };
  return table;
}

}  // namespace bw
