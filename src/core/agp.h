// AGP: one open project, and the door into the engine.
//
// A host creates an AGP, then AddProj or Load, edits through properties and
// collections, saves and generates. Operations never throw towards the host:
// they leave their reason in ProjErr ("" is success).
//
// Every attribute of the project table is also a property of AGP, of the
// same name and type (`PROJ.MultiLanguage`, `PROJ.RecPerPage = 20`): the
// member table carries one generated entry per attribute, next to the
// members written out below. C++ callers use attr()/setAttr() or the typed
// readers instead of one function per attribute.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "core/databases.h"
#include "core/dispatch.h"
#include "core/properties.h"
#include "generation/control_items.h"
#include "template/controls.h"

namespace bw {

class Composer;

class AGP : public Dispatch {
 public:
  AGP();
  ~AGP() override;

  // Project life cycle.
  void AddProj(const std::string& projectName);
  void DeleteProj();
  bool ProjInit() const { return projInit_; }

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

  // Defaults in the settings store.
  void LoadDefault();
  void SaveDefault();

  // The project file. Load fills an empty project from `projFile`; Save
  // writes it after keeping the old file as backup 1. Both leave ProjErr ""
  // on success and never throw. `Sync` compares the definition with the
  // live database when the project's AutoSync is set.
  void Load(const std::string& projFile, bool Sync);
  void Save(const std::string& projFile);
  // Repairs TblSeq and FldSeq to 1..Count, telling the user of each repair.
  bool CheckSequences();
  const std::string& CodeBaseFile() const { return codeBaseFile_; }
  const std::string& KeywordFile() const { return keywordFile_; }

  // Custom scripts, for hosts. A script's place is named by the seven values
  // of AGPCustomScripts (template/custom_scripts.h); its code is not part of
  // the place, so an update leaves the script where it is.
  bool AddCustomScript(const std::string& sScriptType, const std::string& sCodeType,
                       const std::string& sName, const std::string& sLanguage,
                       const std::string& sCtrlID, const std::string& sL1Key,
                       const std::string& sL2Key, const std::string& sCode);
  // False when no script has exactly this place.
  bool UpdateCustomScript(const std::string& sScriptType, const std::string& sCodeType,
                          const std::string& sName, const std::string& sLanguage,
                          const std::string& sCtrlID, const std::string& sL1Key,
                          const std::string& sL2Key, const std::string& sCode);
  bool DeleteCustomScript(const std::string& sScriptType, const std::string& sCodeType,
                          const std::string& sName, const std::string& sLanguage,
                          const std::string& sCtrlID, const std::string& sL1Key,
                          const std::string& sL2Key);
  // Lookups in the code base as it was last loaded.
  std::string LoadCodeBase(const std::string& sScriptType, const std::string& sCodeType,
                           const std::string& sName, const std::string& sLanguage);
  bool CodeBaseExist(const std::string& sScriptType, const std::string& sCodeType,
                     const std::string& sName, const std::string& sLanguage);
  // The default text of a place: the code base file of the CodeBase setting
  // is loaded again and its text for the first four values tidied; "" when
  // the setting names no file. The last three values select nothing.
  std::string LoadCustomScriptCode(const std::string& sScriptType, const std::string& sCodeType,
                                   const std::string& sName, const std::string& sLanguage,
                                   const std::string& sCtrlID, const std::string& sL1Key,
                                   const std::string& sL2Key);

  // Settings store read for hosts: `sClass` "hklm" in any case is the
  // machine hive, anything else the user hive.
  Variant ReadRegValue(const Variant& sClass, const Variant& sSection, const Variant& sKey);
  void AddTrace(const std::string& text);
  bool IsDirty() const;
  std::string ProjErr() const;
  void setProjErr(const std::string& text);
  std::int32_t hwnd() const { return hwnd_; }
  void setHwnd(std::int32_t v) { hwnd_ = v; }
  Ref<AGProperties> Properties() const { return properties_; }
  std::string FldSrchOprs(std::int16_t adoType) const;

  // Runs a string of template language outside generation and gives back
  // its output; on failure the string itself, with ProjErr set and the
  // details in parseerror.txt of the output folder.
  std::string ParseScript(const std::string& str);

  // The composition state, in the project's script language.
  Composer& composer();

  // The controls of the loaded template.
  Ref<AGPControls> ControlList() const { return controlList_; }
  // The generation choices of the controls not bound to a table, and of the
  // "@" items (database, config file, language files, ...).
  Ref<AGControlItems> ControlItems() const { return controlItems_; }

  // Generation. GenCheck prepares the template and fills the choices
  // without writing anything; its result is the number of output files
  // that exist already (0 also after a failure). GenScript writes the
  // site into Destination. Both leave ProjErr "" on success.
  std::int16_t GenCheck();
  void GenScript();

  // Probes the objects a load or a run needs (the script host); false with
  // ProjErr set when one cannot be made.
  bool CreateRuntimeObjects();
  // Gives the project, and a related project that has none, a ProjID.
  void EnsureProjectIds();

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
  // The database schema. LoadDB reads a whole schema into a new current
  // database; LoadTable reads one table again, or first, when the database
  // was loaded lazily. Both leave ProjErr "" on success.
  void LoadDB(const Variant& sDbName, const Variant& sDbType, const Variant& sPath,
              const Variant& sPhyPath, const Variant& bDBUseServerMapPath, const Variant& sUID,
              const Variant& sPwd, const Variant& sConnStr, const Variant& sSchema);
  void LoadTable(const std::string& sTableName);
  // The generator's working table; none outside generation.
  const Ref<AGPTable>& currentTable() const { return currentTable_; }
  void setCurrentTable(Ref<AGPTable> table) { currentTable_ = std::move(table); }

  // The shared stores, as the host reaches them.
  Ref<Dispatch> MenuList() const;
  Ref<Dispatch> Extensions() const;
  Ref<Dispatch> Language() const;
  Ref<Dispatch> customscripts() const;

  // Steps of a generation run between the control file and the script host.
  // A failure leaves ProjErr set; those marked "stops" raise GenerationError.
  //
  // True when `cond` holds for the project, the current control and the
  // generation run's script host.
  bool EvalCondition(const std::string& cond);
  // The name of the control's composed function: ztEx_<cs|vb>_<id><tag>.
  std::string ControlFunctionId(const AGPControl& ctrl);
  // The template file of a control; several comma-separated files are
  // joined into the cache folder's ~tmp.tpl first.
  std::string ControlSourcePath(const std::string& ifiles, const std::string& ext);
  // Composes the control into one function and writes it to `sOutFile`.
  // Stops on a missing template or a template error.
  void ComposeControl(AGPControl& ctrl, const std::string& sOutFile);
  // Adds the files of the active `function` controls to the run's host.
  void LoadTemplateScripts();

  // Values of AGP itself, read from the settings store by LoadDefault.
  const std::string& AppVersion() const { return appVersion_; }
  const std::string& TemplateExt() const { return templateExt_; }
  bool BackupFile() const { return backupFile_; }
  const std::string& UserCode() const { return userCode_; }
  std::int16_t UnloadThresholdCount() const { return unloadThresholdCount_; }

  // Attribute values for C++ callers. attr() reads the stored value as it
  // is; typedAttr() converts it to the attribute's declared type, as the
  // generated properties do; setAttr() writes like Properties.Item().Value.
  const Variant& attr(std::string_view name) { return properties_->value(name); }
  Variant typedAttr(std::string_view name);
  std::string attrText(std::string_view name) { return attr(name).toText(); }
  bool attrBool(std::string_view name) { return typedAttr(name).toBoolean().value_or(false); }
  void setAttr(std::string_view name, Variant value) { properties_->setValue(name, std::move(value)); }

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGP"; }

 private:
  void loadThemeDefaults();
  void applyThemeFile(const std::string& path);
  void makeUserFolders();

  Ref<AGProperties> properties_;
  std::unique_ptr<Composer> composer_;
  Ref<AGPControls> controlList_;
  Ref<AGControlItems> controlItems_;
  Ref<AGPDatabases> databases_;
  std::string curDBName_;
  Ref<AGPTable> currentTable_;
  bool projInit_ = false;
  std::int32_t hwnd_ = 0;
  std::string appVersion_;
  std::string templateExt_;
  bool backupFile_ = false;
  std::string userCode_;
  std::int16_t unloadThresholdCount_ = 20;
  std::string codeBaseFile_;
  std::string keywordFile_;

  friend class ProjectReader;
};

}  // namespace bw
