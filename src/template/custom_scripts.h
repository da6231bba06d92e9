// AGPCustomScripts: the user's code for fixed places of the generated
// application, each entry tied to a table (ScriptL1Key) and maybe a field
// (ScriptL2Key).
//
// This holds the entries as plain records in list order, and the two
// operations that follow a table: a rename carried into the entries, and
// the deletion of the table's own entries. Keys compare exactly, code types
// without regard to case.
#pragma once

#include <string>
#include <vector>

#include "core/dispatch.h"

namespace bw {

struct CustomScript {
  std::string ScriptType, ScriptCodeType, ScriptName, ScriptLanguage, ScriptCtrlID;
  std::string ScriptL1Key, ScriptL2Key, ScriptCode;
};

class AGPCustomScripts : public Dispatch {
 public:
  std::int32_t Count() const { return static_cast<std::int32_t>(scripts_.size()); }
  // Every entry of table `oldName` moves to `newName`. False if either is "".
  bool Change(const std::string& oldName, const std::string& newName);
  // Removes the entries of code type "Table" on table `name`.
  void DeleteTableScripts(const std::string& name);

  void append(CustomScript script) { scripts_.push_back(std::move(script)); }
  const std::vector<CustomScript>& scripts() const { return scripts_; }

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPCustomScripts"; }

 private:
  std::vector<CustomScript> scripts_;
};

// The project's one list of custom scripts, created on first use.
AGPCustomScripts& CustomScripts();

}  // namespace bw
