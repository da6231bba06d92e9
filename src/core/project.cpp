#include "core/project.h"

#include "core/agp_vars.h"
#include "core/conversions.h"
#include "core/names.h"
#include "core/project_attributes.h"
#include "core/settings_file.h"
#include "core/status.h"
#include "platform/hash.h"
#include "platform/text.h"

namespace bw {

Project::Project()
    : properties_(make<AGProperties>(ProjectLayout())),
      controlItems_(make<AGControlItems>()),
      databases_(make<AGPDatabases>()),
      appVersion_(AppVersionText()) {
  setAttr("ProjID", Status().GetGUID());
}

Project::~Project() = default;

// Deleting the database by its key unloads it, so the stores lose the
// entries of its tables too.
void Project::clear() {
  properties_->reset(ProjectLayout());
  std::vector<std::string> names;
  for (std::int32_t position = 1; position <= databases_->Count(); ++position)
    names.push_back(databases_->Item(Variant(position))->DBName());
  for (const std::string& name : names) databases_->Delete(Variant(name));
  curDBName_.clear();
  currentTable_ = {};
}

Ref<AGPDatabase> Project::DB() const {
  AGPDatabase* db = databases_->database(curDBName_);
  return db ? refTo(db) : nullptr;
}

Ref<AGPDatabase> Project::addDatabase(const std::string& name) {
  databases_->Add(name);
  if (!AGPVars().ProjErr.empty()) return {};
  curDBName_ = name;
  return DB();
}

Variant Project::GetV(const std::string& name) {
  if (auto slot = properties_->find(name))
    return ConvertSetting(properties_->valueAt(*slot), properties_->defAt(*slot).dataType);
  Variant fallback = Settings().LoadSettingValue("Project", name);
  if (fallback.isEmpty() || fallback.isNull()) return Variant("");
  properties_->add(AttributeDef{name, Settings().LoadSettingType("Project", name)});
  properties_->setValueAt(properties_->size() - 1, fallback);
  return fallback;
}

Variant Project::SetV(const std::string& name, const Variant& value) {
  if (auto slot = properties_->find(name)) {
    properties_->setValueAt(*slot, ConvertSetting(value, properties_->defAt(*slot).dataType));
  } else {
    properties_->add(AttributeDef{name, Settings().LoadSettingType("Project", name)});
    properties_->setValueAt(properties_->size() - 1, value);
  }
  return Variant();
}

Variant Project::typedAttr(std::string_view name) {
  std::size_t slot = properties_->ensure(name);
  return CoerceOrZero(properties_->valueAt(slot), properties_->kindAt(slot));
}

void Project::setProjName(const std::string& name) {
  setAttr("ProjName", Variant(name));
  const std::string var = MakeVarName(name, "");
  setAttr("ProjVar", Variant(var));
  AGPVars().ProjVar = var;
}

// Reserved words differ by language, so a loaded database's variable names
// are rebuilt when the language changes.
void Project::setProgramLanguage(const std::string& language) {
  setAttr("ProgramLanguage", Variant(language));
  AGPVars().ProgramLanguage = language;
  if (Ref<AGPDatabase> db = DB()) db->Tables()->rebuildVariableNames();
}

void Project::setAppCompatVersion(const Variant& value) {
  Variant converted = CoerceOrZero(value, DataKind::Integer);
  setAttr("AppCompatVersion", converted);
  AGPVars().AppCompatVersion = converted;
}

void Project::setDestination(const std::string& folder) {
  setAttr("Destination", Variant(folder));
  AGPVars().Destination = folder;
}

std::string Project::SecPasswdEncript() {
  const std::string password = attrText("SecPasswd");
  const std::string format = text::toLower(attrText("PasswordFormat"));
  if (format == "sha1") return hash::sha1Hex(password);
  if (format == "md5") return hash::md5Hex(password);
  return password;
}

}  // namespace bw
