// AGPExtensions: the add-on packages of the project's template, each with
// the tables and fields it has attributes for.
//
// This holds, per extension, the names of its table and field entries, and
// the renames and removals that follow a table or field of the project.
// Entry names match without regard to case, like the keys of the project's
// own tables and fields.
#pragma once

#include <pugixml.hpp>

#include <memory>
#include <string>
#include <vector>

#include "core/dispatch.h"

namespace bw {

struct ExtensionTable {
  std::string TblName;
  std::vector<std::string> fields;  // FldName of each field entry
};

struct Extension {
  std::string Name;
  std::vector<ExtensionTable> tables;
  // The extension's element as the project file held it, written back as
  // it was read until the extension's own attributes are modelled.
  std::shared_ptr<const pugi::xml_document> element = nullptr;
};

class AGPExtensions : public Dispatch {
 public:
  std::int32_t Count() const { return static_cast<std::int32_t>(extensions_.size()); }

  void RenameTable(const std::string& oldName, const std::string& newName);
  void RenameField(const std::string& tableName, const std::string& oldName, const std::string& newName);
  void RemoveTable(const std::string& name);
  void RemoveField(const std::string& tableName, const std::string& fieldName);

  void append(Extension extension) { extensions_.push_back(std::move(extension)); }
  const std::vector<Extension>& extensions() const { return extensions_; }

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPExtensions"; }

 private:
  // Calls `visit` with each extension's entry for table `name`.
  template <typename Visit>
  void forEachTableEntry(const std::string& name, Visit visit);

  std::vector<Extension> extensions_;
};

// The project's one extension list, created on first use.
AGPExtensions& Extensions();

}  // namespace bw
