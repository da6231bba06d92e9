#include "persistence/menus.h"

#include <algorithm>

#include "core/agp_vars.h"
#include "language/phrase_store.h"
#include "platform/text.h"

namespace bw {

const MemberTable& AGPMenu::members() const {
  using M = AGPMenu;
  static const MemberTable table{
      field<&M::MenuId>("MenuId"),
      field<&M::MenuText>("MenuText"),
      field<&M::MenuParentId>("MenuParentId"),
      field<&M::MenuGroup>("MenuGroup"),
      field<&M::MenuSource>("MenuSource"),
      field<&M::MenuExtUrl>("MenuExtUrl"),
      field<&M::MenuAnonymous>("MenuAnonymous"),
      field<&M::MenuSecurity>("MenuSecurity"),
      field<&M::MenuUrl>("MenuUrl"),
      field<&M::MenuCustomUrl>("MenuCustomUrl"),
      field<&M::MenuLevel>("MenuLevel"),
      field<&M::MenuShow>("MenuShow"),
      field<&M::MenuDisplayOrder>("MenuDisplayOrder"),
      method<&M::MenuAttExist>("MenuAttExist"),
      method<&M::MenuAtt>("MenuAtt"),
  };
  return table;
}

namespace {

// The fields that MenuAtt reads; members() also holds MenuAtt itself.
constexpr std::string_view kMenuFields[] = {
    "MenuId",     "MenuText",      "MenuParentId",    "MenuGroup", "MenuSource",
    "MenuExtUrl", "MenuAnonymous", "MenuSecurity",    "MenuUrl",   "MenuCustomUrl",
    "MenuLevel",  "MenuShow",      "MenuDisplayOrder"};

}  // namespace

bool AGPMenu::MenuAttExist(const std::string& name) const {
  return std::ranges::any_of(kMenuFields,
                             [&](std::string_view field) { return text::iequals(field, name); });
}

// Read through the member table, whose thunks already turn each field into
// its Variant; a Variant's text is the decimal number or True/False.
std::string AGPMenu::MenuAtt(const std::string& name) {
  return MenuAttExist(name) ? get(name).toText() : std::string();
}

Ref<AGPMenu> AGPMenus::Item(std::int32_t position) const {
  if (position < 1 || position > Count()) raiseBasicError(basic_error::kSubscriptOutOfRange);
  return items_[static_cast<std::size_t>(position - 1)];
}

bool AGPMenus::MenuHasID(std::int32_t id) const {
  for (const Ref<AGPMenu>& item : items_)
    if (item->MenuId == id) return true;
  return false;
}

bool AGPMenus::MenuHasTable(const std::string& source, const std::string& name) const {
  return GetItemByTableName(source, name) != nullptr;
}

Ref<AGPMenu> AGPMenus::GetItemByTableName(const std::string& source, const std::string& name) const {
  for (const Ref<AGPMenu>& item : items_)
    if (item->isTableItem(source, name)) return item;
  return {};
}

bool AGPMenus::DeleteMenu(std::int32_t id) {
  auto it = std::find_if(items_.begin(), items_.end(),
                         [id](const Ref<AGPMenu>& item) { return item->MenuId == id; });
  if (it == items_.end()) return false;
  Language().DeleteMenuPhrase(std::to_string(id));
  items_.erase(it);
  for (const Ref<AGPMenu>& item : items_)
    if (item->MenuParentId == id) item->MenuParentId = -1;
  return true;
}

void AGPMenus::append(Ref<AGPMenu> item) { items_.push_back(std::move(item)); }

const MemberTable& AGPMenus::members() const {
  using M = AGPMenus;
  static const MemberTable table{
      method<&M::Count>("Count"),
      asDefault(property<&M::Item>("Item")),
      method<&M::MenuHasTable>("MenuHasTable"),
      method<&M::GetItemByTableName>("GetItemByTableName"),
      method<&M::DeleteMenu>("DeleteMenu"),
  };
  return table;
}

AGPMenus& Menus() {
  Ref<Dispatch>& slot = AGPVars().Menus;
  if (!slot) slot = make<AGPMenus>();
  return static_cast<AGPMenus&>(*slot);
}

}  // namespace bw
