// DefinitionListener: what the stores that name tables and fields must hear.
//
// Phrases, menus, extensions and custom scripts refer to tables and fields
// by name, and live in layers above the definition model. So the model does
// not reach into them: AGPTables and AGPFields tell the one listener in
// AGPVars of every rename and delete, and of the two table attributes that
// menus show. The project object installs the listener that carries each
// event into the stores (project/store_links.h); the default one carries
// nothing, which is what a definition model of its own, as in a schema
// snapshot, needs.
#pragma once

#include <string>

namespace bw {

class DefinitionListener {
 public:
  virtual ~DefinitionListener() = default;

  virtual void tableRenamed(const std::string& /*oldName*/, const std::string& /*newName*/) {}
  // `name` is the table's TblName; `key` is the key it was deleted by, which
  // custom scripts and menu items are matched against.
  virtual void tableDeleted(const std::string& /*name*/, const std::string& /*key*/) {}
  virtual void fieldRenamed(const std::string& /*table*/, const std::string& /*oldName*/,
                            const std::string& /*newName*/) {}
  virtual void fieldDeleted(const std::string& /*table*/, const std::string& /*name*/) {}
  // TblGen and TblCaption were written.
  virtual void tableGenerationChanged(const std::string& /*table*/, bool /*generate*/) {}
  virtual void tableCaptionChanged(const std::string& /*table*/, const std::string& /*caption*/) {}
};

}  // namespace bw
