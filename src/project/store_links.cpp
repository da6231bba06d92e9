#include "project/store_links.h"

#include "extensions/extensions.h"
#include "language/phrase_store.h"
#include "persistence/menus.h"
#include "template/custom_scripts.h"

namespace bw {

void StoreLinks::tableRenamed(const std::string& oldName, const std::string& newName) {
  Extensions().RenameTable(oldName, newName);
  Language().RenameTable(Variant(oldName), Variant(newName));
  if (Ref<AGPMenu> item = Menus().GetItemByTableName("", oldName)) item->MenuUrl = newName;
  CustomScripts().Change(oldName, newName);
}

// Only the first item that links to the table goes, of whatever source.
void StoreLinks::tableDeleted(const std::string& name, const std::string& key) {
  Language().DeleteTablePhrase(name);
  Extensions().RemoveTable(name);
  CustomScripts().DeleteTableScripts(key);
  for (const Ref<AGPMenu>& item : Menus().items()) {
    if (!item->MenuCustomUrl && item->MenuUrl == key) {
      Menus().DeleteMenu(item->MenuId);
      return;
    }
  }
}

void StoreLinks::fieldRenamed(const std::string& table, const std::string& oldName,
                              const std::string& newName) {
  Extensions().RenameField(table, oldName, newName);
  Language().RenameField(Variant(table), Variant(oldName), Variant(newName));
}

void StoreLinks::fieldDeleted(const std::string& table, const std::string& name) {
  Extensions().RemoveField(table, name);
  Language().DeleteFieldPhrase(table, name);
}

void StoreLinks::tableGenerationChanged(const std::string& table, bool generate) {
  for (const Ref<AGPMenu>& item : Menus().items())
    if (item->isTableItem("", table)) item->MenuShow = generate;
}

void StoreLinks::tableCaptionChanged(const std::string& table, const std::string& caption) {
  if (Ref<AGPMenu> item = Menus().GetItemByTableName("", table)) item->MenuText = caption;
}

}  // namespace bw
