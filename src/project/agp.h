// AGP: one open project, and the door into the engine.
//
// A host creates an AGP, then AddProj or Load, edits through properties and
// collections, saves and generates. Operations never throw towards the host:
// they leave their reason in ProjErr ("" is success).
//
// AGP is the project (core/project.h) with the members that reach into the
// subsystems: the project file, the schema, the template and generation,
// and the shared stores of phrases, menus, master/detail definitions,
// custom scripts and extensions. It also links those stores to the
// definition model, so that renaming or deleting a table or field carries
// into every store that names it (project/store_links.h).
#pragma once

#include <cstdint>
#include <string>

#include "core/project.h"
#include "template/project_template.h"

namespace bw {

class AGP : public Project {
 public:
  AGP();
  ~AGP() override;

  // Project life cycle.
  void AddProj(const std::string& projectName);
  void DeleteProj();

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

  // The database schema. LoadDB reads a whole schema into a new current
  // database; LoadTable reads one table again, or first, when the database
  // was loaded lazily. Both leave ProjErr "" on success.
  void LoadDB(const Variant& sDbName, const Variant& sDbType, const Variant& sPath,
              const Variant& sPhyPath, const Variant& bDBUseServerMapPath, const Variant& sUID,
              const Variant& sPwd, const Variant& sConnStr, const Variant& sSchema);
  void LoadTable(const std::string& sTableName);

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

  // Runs a string of template language outside generation and gives back
  // its output; on failure the string itself, with ProjErr set and the
  // details in parseerror.txt of the output folder.
  std::string ParseScript(const std::string& str);

  // Generation. GenCheck prepares the template and fills the choices
  // without writing anything; its result is the number of output files
  // that exist already (0 also after a failure). GenScript writes the
  // site into Destination. Both leave ProjErr "" on success.
  std::int16_t GenCheck();
  void GenScript();

  // The template of generation runs: its controls and composition.
  ProjectTemplate& projectTemplate() { return template_; }
  Ref<AGPControls> ControlList() const { return template_.controls(); }

  // The shared stores, as the host reaches them.
  Ref<Dispatch> MenuList() const;
  Ref<Dispatch> Extensions() const;
  Ref<Dispatch> Language() const;
  Ref<Dispatch> customscripts() const;
  Ref<Dispatch> MasterDetails() const;
  Ref<Dispatch> CodeBase() const;

  // Settings store read for hosts: `sClass` "hklm" in any case is the
  // machine hive, anything else the user hive.
  Variant ReadRegValue(const Variant& sClass, const Variant& sSection, const Variant& sKey);
  void AddTrace(const std::string& text);
  bool IsDirty() const;
  std::string ProjErr() const;
  void setProjErr(const std::string& text);
  std::string FldSrchOprs(std::int16_t adoType) const;
  // Raises the status display over the host's windows.
  void BringToFront();

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGP"; }

 private:
  void loadThemeDefaults();
  void applyThemeFile(const std::string& path);
  void makeUserFolders();

  ProjectTemplate template_;
};

}  // namespace bw
