#include "persistence/bag_xml.h"

#include "core/conversions.h"
#include "platform/files.h"
#include "platform/text.h"
#include "template/settings_file.h"

namespace bw {
namespace {

void loadKnownAttribute(AGProperties& bag, std::size_t slot, std::string_view name,
                        const char* value) {
  const AttributeDef& def = bag.defAt(slot);
  if (!def.fileSave) return;
  const std::string lower = text::toLower(name);
  if (lower == "js") {
    // A script path counts only while the file is there.
    if (*value && files::fileExists(value)) bag.setValueAt(slot, ConvertValue(Variant(value), def.kind()));
  } else if (lower == "fldtagvalues") {
    bag.setValueAt(slot, Variant(text::replaceAll(value, "|", text::kCrLf)));
  } else {
    bag.setValueAt(slot, ConvertValue(Variant(value), def.kind()));
  }
}

void loadUnknownAttribute(AGProperties& bag, std::string_view name, const char* value,
                          bool isProjectRoot) {
  const std::string type =
      isProjectRoot ? Settings().LoadSettingType("Project", std::string(name)) : "String";
  AttributeDef def{std::string(name), type};
  bag.add(def);
  bag.setValueAt(bag.size() - 1, ConvertSetting(Variant(value), type));
}

std::string fileText(const AttributeDef& def, const Variant& value) {
  if (def.dataType == "Boolean") {
    const bool on = value.type() == VarType::Boolean ? value.boolean() : false;
    return on ? "1" : "0";
  }
  std::string text = value.toText();
  if (text::toLower(def.name) == "fldtagvalues") text = text::replaceAll(text, text::kCrLf, "|");
  return text;
}

}  // namespace

void LoadBagFromElement(AGProperties& bag, const pugi::xml_node& element, bool isProjectRoot) {
  for (pugi::xml_attribute attribute : element.attributes()) {
    const std::string_view name = attribute.name();
    if (auto slot = bag.find(name))
      loadKnownAttribute(bag, *slot, name, attribute.value());
    else
      loadUnknownAttribute(bag, name, attribute.value(), isProjectRoot);
  }
}

void WriteBagToElement(const AGProperties& bag, pugi::xml_node element) {
  for (std::size_t slot = 0; slot < bag.size(); ++slot) {
    const AttributeDef& def = bag.defAt(slot);
    if (!def.fileSave) continue;
    element.append_attribute(def.name.c_str()).set_value(fileText(def, bag.valueAt(slot)).c_str());
  }
}

}  // namespace bw
