// Project defaults in the settings store: LoadDefault and SaveDefault.
//
// Every project attribute registered with RegSave has a value of its own
// name in the Project section; a new project and a project being loaded
// start from those values. The fixed values below are set whatever the
// store says, because a project's security and generation choices must not
// be inherited from an earlier project by accident.
#include "persistence/defaults.h"

#include "core/agp_vars.h"
#include "core/databases.h"
#include "core/registry.h"
#include "persistence/encoding.h"

namespace bw {
namespace {

Variant userSetting(const std::string& section, const char* name) {
  return ReadSetting("HKCU", section, name);
}

// The value as a whole number when it is numeric, else 0.
std::int16_t numericOrZero(const Variant& v) {
  if (v.isString() && !parseNumber(v.string())) return 0;
  return v.toInteger().value_or(0);
}

// The attributes registered for the settings store become the defaults of
// their section.
void writeStoredAttributes(const AGProperties& bag, const std::string& section) {
  for (std::size_t slot = 0; slot < bag.size(); ++slot) {
    const AttributeDef& def = bag.defAt(slot);
    if (def.regSave) WriteSetting("HKCU", section, def.name, def.regFormat, bag.valueAt(slot));
  }
}

}  // namespace

void LoadDefault(Project& project) {
  AGPVarsData& vars = AGPVars();
  AGProperties& bag = *project.Properties();
  for (std::size_t slot = 0; slot < bag.size(); ++slot) {
    const AttributeDef& def = bag.defAt(slot);
    if (def.regSave)
      bag.setValueAt(slot, ConvertSetting(userSetting(vars.RegProject, def.name.c_str()), def.kind()));
  }

  vars.LanguageFolder = userSetting(vars.RegGeneral, "LanguageFolder").toText();
  project.setBackupFile(
      ConvertSetting(userSetting(vars.RegGeneral, "BackupFile"), DataKind::Boolean).toBoolean().value_or(false));
  vars.DefaultDateFormat = numericOrZero(project.attr("defaultDateFormat"));
  project.setUserCode(userSetting(vars.RegGeneral, "UserCode").toText());
  vars.ScriptEngineTimeout =
      ConvertSetting(userSetting(vars.RegGeneral, "ScriptEngineTimeout"), DataKind::Long)
          .toLong()
          .value_or(0);
  vars.AppThemesFolder = userSetting(vars.RegGeneral, "AppThemesFolder").toText();
  vars.AppDataFolder = userSetting(vars.RegGeneral, "AppDataFolder").toText();

  for (const char* name : {"IncFiles", "IncVirtuals", "SecLoginID", "SecPasswd", "SecTbl",
                           "SecLoginIDFld", "SecPasswdFld"})
    project.setAttr(name, Variant(""));
  project.setAttr("SecType", Variant("None"));
  project.setAttr("AutoSync", Variant(true));
  project.setAttr("AutoBrowse", Variant(false));

  if (project.attrText("XMLEncoding").empty()) project.setAttr("XMLEncoding", Variant(GetSystemCharset()));

  project.setAttr("OtherGen", Variant(true));
  project.setAttr("WebConfigGen", Variant(true));
  project.setAttr("WebConfigOverwrite", Variant(true));
  project.setAttr("LinkOnLeft", Variant(false));
  project.setAttr("PagerStyle", Variant(std::int16_t{2}));
  project.setAttr("MultiDelete", Variant(false));

  const std::int16_t threshold = userSetting(vars.RegGeneral, "UnloadThresholdCount").toInteger().value_or(0);
  project.setUnloadThresholdCount(threshold <= 0 ? 20 : threshold);

  // Keep the shared copies of the attributes in step with the values read,
  // so that names made before the next setter call use the right language.
  vars.ProgramLanguage = project.attrText("ProgramLanguage");
  vars.AppCompatVersion = project.attr("AppCompatVersion");
}

void SaveDefault(Project& project) {
  const AGPVarsData& vars = AGPVars();
  writeStoredAttributes(*project.Properties(), vars.RegProject);
  if (const Ref<AGPDatabase> db = project.DB()) writeStoredAttributes(db->bag(), vars.RegDatabase);
  WriteSetting("HKCU", vars.RegGeneral, "BackupFile", 1, project.BackupFile());
  WriteSetting("HKCU", vars.RegGeneral, "UserCode", 1, project.UserCode());
  WriteSetting("HKCU", vars.RegGeneral, "ScriptEngineTimeout", 4, vars.ScriptEngineTimeout);
  WriteSetting("HKCU", vars.RegGeneral, "AppThemesFolder", 1, vars.AppThemesFolder);
  WriteSetting("HKCU", vars.RegGeneral, "AppDataFolder", 1, vars.AppDataFolder);
}

}  // namespace bw
