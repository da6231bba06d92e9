#include "core/dispatch.h"

namespace bw {

void raiseBasicError(std::int32_t number) {
  const char* description = "Application-defined or object-defined error";
  switch (number) {
    case basic_error::kOverflow:
      description = "Overflow";
      break;
    case basic_error::kSubscriptOutOfRange:
      description = "Subscript out of range";
      break;
    case basic_error::kTypeMismatch:
      description = "Type mismatch";
      break;
    case basic_error::kInvalidUseOfNull:
      description = "Invalid use of Null";
      break;
    case basic_error::kObjectDoesNotSupport:
      description = "Object doesn't support this property or method";
      break;
    case basic_error::kWrongArgumentCount:
      description = "Wrong number of arguments or invalid property assignment";
      break;
    case basic_error::kKeyInUse:
      description = "This key is already associated with an element of this collection";
      break;
  }
  throw AutomationError(number, description);
}

namespace automation {
void raise(std::int32_t number) { raiseBasicError(number); }
}  // namespace automation

MemberTable::MemberTable(std::initializer_list<Member> members) : members_(members) { reindex(); }

MemberTable::MemberTable(std::initializer_list<Member> members, const MemberTable& base)
    : members_(members) {
  for (const Member& m : base.members_) {
    bool overridden = false;
    for (const Member& own : members)
      if (text::iequals(own.name, m.name)) overridden = true;
    if (!overridden) members_.push_back(m);
  }
  reindex();
}

void MemberTable::add(Member member) {
  if (find(member.name)) return;
  members_.push_back(std::move(member));
  reindex();
}

void MemberTable::reindex() {
  index_.clear();
  default_ = nullptr;
  for (std::size_t k = 0; k < members_.size(); ++k) {
    index_.emplace(members_[k].name, k);
    if (members_[k].isDefault && !default_) default_ = &members_[k];
  }
}

const Member* MemberTable::find(std::string_view name) const {
  auto it = index_.find(name);
  return it == index_.end() ? nullptr : &members_[it->second];
}

const Member& Dispatch::member(std::string_view name) const {
  const Member* m = members().find(name);
  if (!m) raiseBasicError(basic_error::kObjectDoesNotSupport);
  return *m;
}

Variant Dispatch::get(std::string_view name, Args args) {
  const Member& m = member(name);
  if (!m.get) raiseBasicError(basic_error::kObjectDoesNotSupport);
  if (args.size() < m.minArgs || args.size() > m.maxArgs)
    raiseBasicError(basic_error::kWrongArgumentCount);
  // A member may drop the last outside reference to its own object.
  Ref<Dispatch> keepAlive(refCount() > 0 ? this : nullptr);
  return m.get(*this, m, args);
}

void Dispatch::put(std::string_view name, const Variant& value, Args args) {
  const Member& m = member(name);
  if (!m.put) raiseBasicError(basic_error::kObjectDoesNotSupport);
  if (args.size() < m.minArgs || args.size() > m.maxArgs)
    raiseBasicError(basic_error::kWrongArgumentCount);
  Ref<Dispatch> keepAlive(refCount() > 0 ? this : nullptr);
  m.put(*this, m, args, value);
}

bool EnumVariant::skip(std::int32_t count) {
  Variant ignored;
  for (std::int32_t k = 0; k < count; ++k)
    if (!next(ignored)) return false;
  return true;
}

// Scripts that enumerate by hand call these; `new Enumerator(coll)` in the
// script host wraps the same object.
const MemberTable& EnumVariant::members() const {
  static const MemberTable table{
      Member{"Next", Member::Kind::Method, 0, 0,
             [](Dispatch& self, const Member&, Args) {
               Variant item;
               static_cast<EnumVariant&>(self).next(item);
               return item;
             }},
      Member{"Reset", Member::Kind::Method, 0, 0,
             [](Dispatch& self, const Member&, Args) {
               static_cast<EnumVariant&>(self).reset();
               return Variant();
             }},
      method<&EnumVariant::skip>("Skip"),
      Member{"Clone", Member::Kind::Method, 0, 0,
             [](Dispatch& self, const Member&, Args) {
               return Variant(Ref<Dispatch>(static_cast<EnumVariant&>(self).clone()));
             }},
  };
  return table;
}

}  // namespace bw
