// StoreLinks: renames and deletes of tables and fields, carried into every
// store that names them.
//
//   table renamed   extensions, phrases, the table's menu item, custom scripts
//   table deleted   phrases, extensions, the table's custom scripts, its first
//                   menu item (its fields follow one by one)
//   field renamed   extensions, phrases
//   field deleted   extensions, phrases
//   TblGen written  shows or hides every menu item of the table
//   TblCaption      becomes the text of the table's first menu item
//
// The project object installs it as the definition listener of AGPVars.
#pragma once

#include <string>

#include "core/definition_listener.h"

namespace bw {

class StoreLinks : public DefinitionListener {
 public:
  void tableRenamed(const std::string& oldName, const std::string& newName) override;
  void tableDeleted(const std::string& name, const std::string& key) override;
  void fieldRenamed(const std::string& table, const std::string& oldName,
                    const std::string& newName) override;
  void fieldDeleted(const std::string& table, const std::string& name) override;
  void tableGenerationChanged(const std::string& table, bool generate) override;
  void tableCaptionChanged(const std::string& table, const std::string& caption) override;
};

}  // namespace bw
