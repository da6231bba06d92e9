// Project defaults in the settings store: LoadDefault and SaveDefault.
//
// Every project attribute registered with RegSave has a value of its own
// name in the Project section; a new project and a project being loaded
// start from those values. The fixed values below are set whatever the
// store says, because a project's security and generation choices must not
// be inherited from an earlier project by accident.
#include "core/agp.h"
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

void AGP::LoadDefault() {
  AGPVarsData& vars = AGPVars();
  AGProperties& bag = *properties_;
  for (std::size_t slot = 0; slot < bag.size(); ++slot) {
    const AttributeDef& def = bag.defAt(slot);
    if (def.regSave)
      bag.setValueAt(slot, ConvertSetting(userSetting(vars.RegProject, def.name.c_str()), def.kind()));
  }

  vars.LanguageFolder = userSetting(vars.RegGeneral, "LanguageFolder").toText();
  backupFile_ = ConvertSetting(userSetting(vars.RegGeneral, "BackupFile"), DataKind::Boolean)
                    .toBoolean()
                    .value_or(false);
  vars.DefaultDateFormat = numericOrZero(attr("defaultDateFormat"));
  userCode_ = userSetting(vars.RegGeneral, "UserCode").toText();
  vars.ScriptEngineTimeout =
      ConvertSetting(userSetting(vars.RegGeneral, "ScriptEngineTimeout"), DataKind::Long)
          .toLong()
          .value_or(0);
  vars.AppThemesFolder = userSetting(vars.RegGeneral, "AppThemesFolder").toText();
  vars.AppDataFolder = userSetting(vars.RegGeneral, "AppDataFolder").toText();

  for (const char* name : {"IncFiles", "IncVirtuals", "SecLoginID", "SecPasswd", "SecTbl",
                           "SecLoginIDFld", "SecPasswdFld"})
    setAttr(name, Variant(""));
  setAttr("SecType", Variant("None"));
  setAttr("AutoSync", Variant(true));
  setAttr("AutoBrowse", Variant(false));

  if (attrText("XMLEncoding").empty()) setAttr("XMLEncoding", Variant(GetSystemCharset()));

  setAttr("OtherGen", Variant(true));
  setAttr("WebConfigGen", Variant(true));
  setAttr("WebConfigOverwrite", Variant(true));
  setAttr("LinkOnLeft", Variant(false));
  setAttr("PagerStyle", Variant(std::int16_t{2}));
  setAttr("MultiDelete", Variant(false));

  const std::int16_t threshold = userSetting(vars.RegGeneral, "UnloadThresholdCount").toInteger().value_or(0);
  unloadThresholdCount_ = threshold <= 0 ? 20 : threshold;

  // Keep the shared copies of the attributes in step with the values read,
  // so that names made before the next setter call use the right language.
  vars.ProgramLanguage = attrText("ProgramLanguage");
  vars.AppCompatVersion = attr("AppCompatVersion");
}

void AGP::SaveDefault() {
  const AGPVarsData& vars = AGPVars();
  writeStoredAttributes(*properties_, vars.RegProject);
  if (const Ref<AGPDatabase> db = DB()) writeStoredAttributes(db->bag(), vars.RegDatabase);
  WriteSetting("HKCU", vars.RegGeneral, "BackupFile", 1, backupFile_);
  WriteSetting("HKCU", vars.RegGeneral, "UserCode", 1, userCode_);
  WriteSetting("HKCU", vars.RegGeneral, "ScriptEngineTimeout", 4, vars.ScriptEngineTimeout);
  WriteSetting("HKCU", vars.RegGeneral, "AppThemesFolder", 1, vars.AppThemesFolder);
  WriteSetting("HKCU", vars.RegGeneral, "AppDataFolder", 1, vars.AppDataFolder);
}

}  // namespace bw
