// AGPMenus: the project's menu, a flat list of items naming their parents.
//
// This holds the items and the operations that tables reach: finding the
// item of a table, and deleting an item. An item of the project's own table
// has MenuSource "", MenuCustomUrl false and the table's name in MenuUrl.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/dispatch.h"

namespace bw {

class AGPMenu : public Dispatch {
 public:
  std::int32_t MenuId = 0;
  std::string MenuText;
  std::int32_t MenuParentId = -1;
  bool MenuGroup = false;
  std::string MenuSource;
  std::string MenuExtUrl;
  std::int16_t MenuAnonymous = 0;
  std::string MenuSecurity;
  std::string MenuUrl;
  bool MenuCustomUrl = false;
  std::int32_t MenuLevel = 0;
  bool MenuShow = false;
  std::int32_t MenuDisplayOrder = 0;

  // The thirteen fields above by name, without regard to case, for
  // templates and the language files: MenuAtt gives numbers in decimal,
  // Booleans as True and False, and "" for any other name.
  bool MenuAttExist(const std::string& name) const;
  std::string MenuAtt(const std::string& name);

  // True for the item of table `name` from `source` ("" for this project).
  bool isTableItem(const std::string& source, const std::string& name) const {
    return !MenuCustomUrl && MenuSource == source && MenuUrl == name;
  }

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPMenu"; }
};

class AGPMenus : public Dispatch {
 public:
  std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }
  // The item at a position from 1, despite the parameter's usual name.
  Ref<AGPMenu> Item(std::int32_t position) const;
  bool MenuHasID(std::int32_t id) const;
  bool MenuHasTable(const std::string& source, const std::string& name) const;
  Ref<AGPMenu> GetItemByTableName(const std::string& source, const std::string& name) const;
  // Removes the item with `id` and its phrases; its children become
  // top-level items. An unknown id changes nothing.
  bool DeleteMenu(std::int32_t id);

  // Appends an item as it stands; the loader and the table list use this.
  void append(Ref<AGPMenu> item);
  void clear() { items_.clear(); }
  const std::vector<Ref<AGPMenu>>& items() const { return items_; }

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPMenus"; }

 private:
  std::vector<Ref<AGPMenu>> items_;
};

// The project's one menu list, created on first use.
AGPMenus& Menus();

}  // namespace bw
