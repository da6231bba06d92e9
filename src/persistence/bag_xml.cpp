#include "persistence/bag_xml.h"

#include "core/conversions.h"
#include "core/settings_file.h"
#include "platform/files.h"
#include "platform/text.h"

namespace bw {
namespace {

// Two attributes are stored differently in the file; they are recognised by
// name without building a lower-case copy for every attribute read.
bool isScriptPath(std::string_view name) { return name.size() == 2 && text::iequals(name, "js"); }
bool isTagValues(std::string_view name) {
  return name.size() == 12 && text::iequals(name, "FldTagValues");
}

void loadKnownAttribute(AGProperties& bag, std::size_t slot, std::string_view name,
                        const char* value) {
  const AttributeDef& def = bag.defAt(slot);
  if (!def.fileSave) return;
  if (isScriptPath(name)) {
    // A script path counts only while the file is there.
    if (*value && files::fileExists(value)) bag.assignAt(slot, ConvertValue(Variant(value), def.kind()));
  } else if (isTagValues(name)) {
    bag.assignAt(slot, Variant(text::replaceAll(value, "|", text::kCrLf)));
  } else {
    bag.assignAt(slot, ConvertValue(Variant(value), def.kind()));
  }
}

void loadUnknownAttribute(AGProperties& bag, std::string_view name, const char* value,
                          bool isProjectRoot) {
  const std::string type =
      isProjectRoot ? Settings().LoadSettingType("Project", std::string(name)) : "String";
  AttributeDef def{std::string(name), type};
  bag.add(def);
  bag.assignAt(bag.size() - 1, ConvertSetting(Variant(value), type));
}


}  // namespace

void LoadBagFromElement(AGProperties& bag, const pugi::xml_node& element, bool isProjectRoot) {
  // Files list the attributes in the bag's order, so the slot after the last
  // one found is tried before the name is looked up.
  std::size_t next = 0;
  for (pugi::xml_attribute attribute : element.attributes()) {
    const std::string_view name = attribute.name();
    std::optional<std::size_t> slot;
    if (next < bag.size() && bag.defAt(next).name == name)
      slot = next;
    else
      slot = bag.find(name);
    if (slot) {
      loadKnownAttribute(bag, *slot, name, attribute.value());
      next = *slot + 1;
    } else {
      loadUnknownAttribute(bag, name, attribute.value(), isProjectRoot);
    }
  }
}

std::string BagFileText(const AttributeDef& def, const Variant& value) {
  if (def.dataType == "Boolean") {
    const bool on = value.type() == VarType::Boolean ? value.boolean() : false;
    return on ? "1" : "0";
  }
  std::string text = value.toText();
  if (isTagValues(def.name)) text = text::replaceAll(text, text::kCrLf, "|");
  return text;
}

void WriteBagAttributes(const AGProperties& bag, XmlTextWriter& out) {
  for (std::size_t slot = 0; slot < bag.size(); ++slot) {
    const AttributeDef& def = bag.defAt(slot);
    if (def.fileSave) out.attribute(def.name, BagFileText(def, bag.valueAt(slot)));
  }
}

}  // namespace bw
