#include "core/settings_file.h"

#include "core/agp_vars.h"
#include "core/conversions.h"
#include "core/registry.h"
#include "platform/host.h"
#include "platform/xml.h"

namespace bw {

bool AGPSettings::LoadSettings() {
  doc_.reset();
  const std::string path = GeneralSetting("ConfigFile").toText();
  // Most users have no custom setting file; only a named file that fails to
  // load is worth a message.
  if (path.empty()) return false;
  auto doc = std::make_unique<pugi::xml_document>();
  if (!xml::loadFile(*doc, path)) {
    AGPVars().host->showMessage("Unable to load custom setting file: '" + path + "'. Please check.",
                                AGPVars().ProductName, MessageIcon::Warning);
    return false;
  }
  doc_ = std::move(doc);
  return true;
}

pugi::xml_node AGPSettings::findSetting(const std::string& section, const std::string& id) const {
  if (!doc_ || section.empty() || id.empty()) return {};
  pugi::xml_node root = doc_->child("zt-setting");
  for (pugi::xml_node sect : root.children("section")) {
    if (section != sect.attribute("name").value()) continue;
    for (pugi::xml_node setting : sect.children("setting"))
      if (id == setting.attribute("id").value()) return setting;
  }
  return {};
}

namespace {

std::string typeOf(const pugi::xml_node& setting) {
  std::string type = setting.attribute("type").value();
  return type.empty() ? "String" : type;
}

}  // namespace

std::string AGPSettings::LoadSettingType(const std::string& section, const std::string& id) const {
  return typeOf(findSetting(section, id));
}

Variant AGPSettings::LoadSettingValue(const std::string& section, const std::string& id) const {
  pugi::xml_node setting = findSetting(section, id);
  if (!setting) return Variant();
  return ConvertSetting(Variant(setting.attribute("value").value()), typeOf(setting));
}

const MemberTable& AGPSettings::members() const {
  static const MemberTable table{
      method<&AGPSettings::LoadSettings>("LoadSettings"),
      method<&AGPSettings::LoadSettingType>("LoadSettingType"),
      method<&AGPSettings::LoadSettingValue>("LoadSettingValue"),
  };
  return table;
}

AGPSettings& Settings() {
  Ref<Dispatch>& slot = AGPVars().Settings;
  if (!slot) {
    auto settings = make<AGPSettings>();
    slot = settings;
    settings->LoadSettings();
  }
  return static_cast<AGPSettings&>(*slot);
}

}  // namespace bw
