// Project: the open project as the subsystems see it.
//
// The host's project object, AGP (project/agp.h), is a Project with the
// members that reach into every subsystem. The subsystems themselves work on
// a Project: its attribute bag, its database, the generator's working table,
// the generation choices of the project, and the values that LoadDefault
// reads from the settings store.
//
// Every attribute of the project table is also a property of AGP, of the
// same name and type (`PROJ.MultiLanguage`, `PROJ.RecPerPage = 20`). C++
// callers use attr()/setAttr() or the typed readers instead of one function
// per attribute.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/control_items.h"
#include "core/databases.h"
#include "core/dispatch.h"
#include "core/properties.h"

namespace bw {

class Project : public Dispatch {
 public:
  Project();
  ~Project() override;

  bool ProjInit() const { return projInit_; }
  void setProjInit(bool init) { projInit_ = init; }
  // Empties the attribute bag back to the registered attributes, all empty,
  // and drops the database.
  void clear();

  // Attribute access by name, falling back on the custom setting file.
  Variant GetV(const std::string& name);
  Variant SetV(const std::string& name, const Variant& value);

  // Attributes whose writes do more than store the value.
  std::string ProjName() { return attrText("ProjName"); }
  void setProjName(const std::string& name);
  std::string ProgramLanguage() { return attrText("ProgramLanguage"); }
  void setProgramLanguage(const std::string& language);
  Variant AppCompatVersion() { return typedAttr("AppCompatVersion"); }
  void setAppCompatVersion(const Variant& value);
  std::string Destination() { return attrText("Destination"); }
  void setDestination(const std::string& folder);
  std::string SecPasswdEncript();

  // Attribute values for C++ callers. attr() reads the stored value as it
  // is; typedAttr() converts it to the attribute's declared type, as the
  // generated properties do; setAttr() writes like Properties.Item().Value.
  const Variant& attr(std::string_view name) { return properties_->value(name); }
  Variant typedAttr(std::string_view name);
  std::string attrText(std::string_view name) { return attr(name).toText(); }
  bool attrBool(std::string_view name) { return typedAttr(name).toBoolean().value_or(false); }
  void setAttr(std::string_view name, Variant value) { properties_->setValue(name, std::move(value)); }
  Ref<AGProperties> Properties() const { return properties_; }

  // The definition model. The project has at most one database; DB is the
  // one whose key is curDBName, or none.
  const Ref<AGPDatabases>& databases() const { return databases_; }
  const std::string& curDBName() const { return curDBName_; }
  void setCurDBName(const std::string& name) { curDBName_ = name; }
  Ref<AGPDatabase> DB() const;
  std::int16_t DBCnt() const { return static_cast<std::int16_t>(databases_->Count()); }
  // Adds the project's database and makes it current; none, with ProjErr
  // set, when the project has one already.
  Ref<AGPDatabase> addDatabase(const std::string& name);

  // The generator's working table; none outside generation.
  const Ref<AGPTable>& currentTable() const { return currentTable_; }
  void setCurrentTable(Ref<AGPTable> table) { currentTable_ = std::move(table); }

  // The generation choices of the controls not bound to a table, and of the
  // "@" items (database, config file, language files, ...).
  Ref<AGControlItems> ControlItems() const { return controlItems_; }

  // Window handle given by the host; the parent of status displays.
  std::int32_t hwnd() const { return hwnd_; }
  void setHwnd(std::int32_t v) { hwnd_ = v; }

  // Values of the project object itself. AppVersion and TemplateExt are
  // fixed; the others are settings that LoadDefault and Load read.
  const std::string& AppVersion() const { return appVersion_; }
  const std::string& TemplateExt() const { return templateExt_; }
  bool BackupFile() const { return backupFile_; }
  void setBackupFile(bool on) { backupFile_ = on; }
  const std::string& UserCode() const { return userCode_; }
  void setUserCode(std::string file) { userCode_ = std::move(file); }
  std::int16_t UnloadThresholdCount() const { return unloadThresholdCount_; }
  void setUnloadThresholdCount(std::int16_t count) { unloadThresholdCount_ = count; }
  const std::string& CodeBaseFile() const { return codeBaseFile_; }
  void setCodeBaseFile(std::string file) { codeBaseFile_ = std::move(file); }
  const std::string& KeywordFile() const { return keywordFile_; }
  void setKeywordFile(std::string file) { keywordFile_ = std::move(file); }

 private:
  Ref<AGProperties> properties_;
  Ref<AGControlItems> controlItems_;
  Ref<AGPDatabases> databases_;
  std::string curDBName_;
  Ref<AGPTable> currentTable_;
  bool projInit_ = false;
  std::int32_t hwnd_ = 0;
  std::string appVersion_;
  std::string templateExt_ = "tpl";
  bool backupFile_ = false;
  std::string userCode_;
  std::int16_t unloadThresholdCount_ = 20;
  std::string codeBaseFile_;
  std::string keywordFile_;
};

}  // namespace bw
