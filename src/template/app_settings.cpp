#include "template/app_settings.h"

#include "core/agp_vars.h"
#include "platform/text.h"
#include "platform/xml.h"

namespace bw {

const MemberTable& AGPAppSetting::members() const {
  static const MemberTable table{
      field<&AGPAppSetting::AppSettingID>("AppSettingID"),
      field<&AGPAppSetting::AppSettingName>("AppSettingName"),
      field<&AGPAppSetting::AppSettingType>("AppSettingType"),
      field<&AGPAppSetting::AppSettingValues>("AppSettingValues"),
      field<&AGPAppSetting::AppSettingDefaultValue>("AppSettingDefaultValue"),
  };
  return table;
}

namespace {

// An attribute by name compared in lower case.
std::string attributeNoCase(const pugi::xml_node& node, std::string_view name) {
  for (pugi::xml_attribute a : node.attributes())
    if (text::toLower(a.name()) == name) return a.value();
  return {};
}

Ref<AGPAppSetting> makeSetting(std::string id, std::string name, std::string type,
                               std::string values, std::string defaultValue) {
  auto setting = make<AGPAppSetting>();
  setting->AppSettingID = std::move(id);
  setting->AppSettingName = std::move(name);
  setting->AppSettingType = std::move(type);
  setting->AppSettingValues = std::move(values);
  setting->AppSettingDefaultValue = std::move(defaultValue);
  return setting;
}

}  // namespace

bool AGPAppSettings::LoadAppSettings(const Variant& file) {
  pugi::xml_document doc;
  if (!xml::loadFile(doc, file.toText())) {
    AGPVars().ProjErr = ProductMessage(": Load project file failed!");
    return false;
  }
  items_.clear();
  curIndex_ = 0;
  pugi::xml_node root = doc.document_element();
  if (text::toLower(xml::localName(root)) != "project") {
    AGPVars().ProjErr = ProductMessage(": Project file is invalid!");
    return true;
  }
  for (pugi::xml_node node : root.children()) {
    if (node.type() != pugi::node_element || text::toLower(node.name()) != "appsetting") continue;
    items_.push_back(makeSetting(attributeNoCase(node, "id"), attributeNoCase(node, "name"),
                                 attributeNoCase(node, "type"), attributeNoCase(node, "values"),
                                 attributeNoCase(node, "defaultvalue")));
  }
  return true;
}

std::optional<std::size_t> AGPAppSettings::indexOf(const std::string& id) const {
  for (std::size_t k = 0; k < items_.size(); ++k)
    if (items_[k]->AppSettingID == id) return k;
  return std::nullopt;
}

bool AGPAppSettings::AddSetting(const std::string& id, const std::string& name,
                                const std::string& type, const std::string& values,
                                const std::string& defaultValue) {
  if (SettingExist(id)) return false;
  items_.push_back(makeSetting(id, name, type, values, defaultValue));
  return true;
}

bool AGPAppSettings::DeleteSetting(const std::string& id) {
  auto k = indexOf(id);
  if (!k) return false;
  items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(*k));
  return true;
}

bool AGPAppSettings::SettingExist(const std::string& id) const { return indexOf(id).has_value(); }

Ref<AGPAppSetting> AGPAppSettings::Item(const Variant& index) {
  std::optional<std::size_t> k;
  if (index.isString()) {
    k = indexOf(std::string(index.string()));
  } else if (index.isNumeric()) {
    auto position = index.toLong();
    if (position && *position >= 1 && *position <= Count()) k = *position - 1;
  }
  if (!k) return {};
  curIndex_ = static_cast<std::int32_t>(*k + 1);
  return items_[*k];
}

const MemberTable& AGPAppSettings::members() const {
  static const MemberTable table{
      method<&AGPAppSettings::LoadAppSettings>("LoadAppSettings"),
      method<&AGPAppSettings::AddSetting>("AddSetting"),
      method<&AGPAppSettings::DeleteSetting>("DeleteSetting"),
      method<&AGPAppSettings::SettingExist>("SettingExist"),
      method<&AGPAppSettings::Count>("Count"),
      asDefault(method<&AGPAppSettings::Item>("Item")),
      property<&AGPAppSettings::curIndex>("curIndex"),
  };
  return table;
}

}  // namespace bw
