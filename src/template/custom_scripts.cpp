#include "template/custom_scripts.h"

#include <algorithm>

#include "core/agp_vars.h"
#include "core/attribute_members.h"
#include "core/attribute_rows.h"
#include "platform/text.h"

namespace bw {
namespace {

// Name, type, settings store, project file, sync.
constexpr AttributeRow kCustomScriptAttributes[] = {
    {"Seq", "Integer", Store::None, false, false},
    {"ScriptType", "String", Store::None, true, true},
    {"ScriptCodeType", "String", Store::None, true, true},
    {"ScriptName", "String", Store::None, true, true},
    {"ScriptLanguage", "String", Store::None, true, true},
    {"ScriptCtrlID", "String", Store::None, true, true},
    {"ScriptL1Key", "String", Store::None, true, true},
    {"ScriptL2Key", "String", Store::None, true, true},
    {"ScriptCode", "String", Store::None, false, true},
};

// The attributes of a place, each with its member of ScriptPlace.
struct PlaceAttribute {
  std::string_view name;
  std::string ScriptPlace::*value;
};
constexpr PlaceAttribute kPlaceAttributes[] = {
    {"ScriptType", &ScriptPlace::ScriptType},     {"ScriptCodeType", &ScriptPlace::ScriptCodeType},
    {"ScriptName", &ScriptPlace::ScriptName},     {"ScriptLanguage", &ScriptPlace::ScriptLanguage},
    {"ScriptCtrlID", &ScriptPlace::ScriptCtrlID}, {"ScriptL1Key", &ScriptPlace::ScriptL1Key},
    {"ScriptL2Key", &ScriptPlace::ScriptL2Key},
};

// The keys are compared first: they tell places apart most often, and
// exactly, which is the cheaper test.
bool samePlace(const ScriptPlace& a, const ScriptPlace& b) {
  return a.ScriptL1Key == b.ScriptL1Key && a.ScriptL2Key == b.ScriptL2Key &&
         text::iequals(a.ScriptName, b.ScriptName) &&
         text::iequals(a.ScriptCodeType, b.ScriptCodeType) &&
         text::iequals(a.ScriptType, b.ScriptType) &&
         text::iequals(a.ScriptLanguage, b.ScriptLanguage) &&
         text::iequals(a.ScriptCtrlID, b.ScriptCtrlID);
}

// A template asks with no name and no control id whether a table or field
// has any script of a code type at all.
bool asksForAnyScript(const ScriptPlace& asked) {
  return text::iequals(asked.ScriptType, "template") && asked.ScriptName.empty() &&
         asked.ScriptCtrlID.empty();
}

bool sameKindOnSameKeys(const ScriptPlace& asked, const ScriptPlace& script) {
  return asked.ScriptL1Key == script.ScriptL1Key && asked.ScriptL2Key == script.ScriptL2Key &&
         text::iequals(asked.ScriptType, script.ScriptType) &&
         text::iequals(asked.ScriptCodeType, script.ScriptCodeType);
}

ScriptPlace placeOf(const std::string& scriptType, const std::string& codeType,
                    const std::string& name, const std::string& language, const std::string& ctrlId,
                    const std::string& l1Key, const std::string& l2Key) {
  return ScriptPlace{scriptType, codeType, name, language, ctrlId, l1Key, l2Key};
}

}  // namespace

std::string ScriptPlace::key() const {
  return text::join({ScriptType, ScriptCodeType, ScriptName, ScriptLanguage, ScriptCtrlID,
                     ScriptL1Key, ScriptL2Key},
                    "_");
}

bool ScriptPlace::complete() const {
  return !ScriptType.empty() && !ScriptCodeType.empty() && !ScriptName.empty() &&
         !ScriptLanguage.empty();
}

const Ref<const PropertyLayout>& CustomScriptLayout() {
  static const Ref<const PropertyLayout> layout = LayoutOf(kCustomScriptAttributes);
  return layout;
}

// ---------------------------------------------------------------------------
// AGPCustomScript

AGPCustomScript::AGPCustomScript() : properties_(make<AGProperties>(CustomScriptLayout())) {}

void AGPCustomScript::setScriptCode(const std::string& code) {
  // The code lives in the file, though not as an attribute, so the bag's
  // own dirty rule does not see it; and a write counts even when the text
  // stays, as the host calls this only for an edit by the user.
  setAttr("ScriptCode", Variant(code));
  AGPVars().Dirty = true;
}

Variant AGPCustomScript::typedAttr(std::string_view name) {
  const std::size_t slot = properties_->ensure(name);
  return CoerceOrZero(properties_->valueAt(slot), properties_->kindAt(slot));
}

ScriptPlace AGPCustomScript::place() {
  ScriptPlace place;
  for (const PlaceAttribute& a : kPlaceAttributes) place.*a.value = attrText(a.name);
  return place;
}

const MemberTable& AGPCustomScript::members() const {
  static const MemberTable table = [] {
    using S = AGPCustomScript;
    MemberTable t{
        property<&S::Key, &S::setKey>("Key"),
        property<&S::Properties>("Properties"),
        property<&S::ScriptCode, &S::setScriptCode>("ScriptCode"),
    };
    AddAttributeMembers<S>(t, *CustomScriptLayout(), {}, {"Seq"});
    return t;
  }();
  return table;
}

// ---------------------------------------------------------------------------
// AGPCustomScripts

AGPCustomScripts::AGPCustomScripts() : items_(make<CSuperCollection>()) {
  items_->setCompareMode(1);
}

std::vector<AGPCustomScript*> AGPCustomScripts::items() const {
  std::vector<AGPCustomScript*> all;
  all.reserve(static_cast<std::size_t>(Count()));
  for (const Variant& value : items_->values())
    all.push_back(static_cast<AGPCustomScript*>(value.object()));
  return all;
}

std::vector<AGPCustomScript*> AGPCustomScripts::bySequence() const {
  std::vector<AGPCustomScript*> all = items();
  std::stable_sort(all.begin(), all.end(),
                   [](AGPCustomScript* a, AGPCustomScript* b) { return a->seq() < b->seq(); });
  return all;
}

void AGPCustomScripts::setCursors(AGPCustomScript& script) {
  curName_ = script.Key();
  curSeq_ = script.seq();
}

AGPCustomScript* AGPCustomScripts::findExact(const ScriptPlace& place,
                                             std::int32_t* position) const {
  std::int32_t at = items_->baseIndex();
  for (AGPCustomScript* script : items()) {
    if (samePlace(script->place(), place)) {
      if (position) *position = at;
      return script;
    }
    ++at;
  }
  return nullptr;
}

bool AGPCustomScripts::exists(const ScriptPlace& place) {
  if (findExact(place)) return true;
  if (!asksForAnyScript(place)) return false;
  for (AGPCustomScript* script : items())
    if (sameKindOnSameKeys(place, script->place())) return true;
  return false;
}

AGPCustomScript* AGPCustomScripts::item(const ScriptPlace& place) {
  AGPCustomScript* script = findExact(place);
  if (script) setCursors(*script);
  return script;
}

bool AGPCustomScripts::add(const ScriptPlace& place) {
  if (!place.complete()) return false;
  if (item(place)) return true;
  const std::string key = place.key();
  // The key ignores case while the table and field keys do not: a second
  // table spelt in another case finds its key taken, and the collection
  // holds one entry per key.
  if (items_->find(key)) return false;
  auto script = make<AGPCustomScript>();
  for (const PlaceAttribute& a : kPlaceAttributes) script->setAttr(a.name, Variant(place.*a.value));
  script->setSeq(static_cast<std::int16_t>(Count() + 1));
  script->setKey(key);
  items_->add(Variant(script), key);
  setCursors(*script);
  return true;
}

bool AGPCustomScripts::remove(const ScriptPlace& place) {
  if (!place.complete()) return false;
  std::int32_t position = 0;
  AGPCustomScript* leaving = findExact(place, &position);
  if (!leaving) return false;
  setCursors(*leaving);
  removeAt(position);
  return true;
}

void AGPCustomScripts::removeAt(std::int32_t position) {
  const std::int16_t gap = static_cast<AGPCustomScript*>(items_->itemAt(position).object())->seq();
  for (AGPCustomScript* script : items())
    if (script->seq() >= gap) script->setSeq(static_cast<std::int16_t>(script->seq() - 1));
  // By position rather than by key: the script's values may have been
  // edited since its key was made.
  items_->remove(Variant(position));
  AGPVars().Dirty = true;
}

bool AGPCustomScripts::Add(const std::string& scriptType, const std::string& codeType,
                           const std::string& name, const std::string& language,
                           const std::string& ctrlId, const std::string& l1Key,
                           const std::string& l2Key) {
  return add(placeOf(scriptType, codeType, name, language, ctrlId, l1Key, l2Key));
}

bool AGPCustomScripts::Delete(const std::string& scriptType, const std::string& codeType,
                              const std::string& name, const std::string& language,
                              const std::string& ctrlId, const std::string& l1Key,
                              const std::string& l2Key) {
  return remove(placeOf(scriptType, codeType, name, language, ctrlId, l1Key, l2Key));
}

bool AGPCustomScripts::ScriptExist(const std::string& scriptType, const std::string& codeType,
                                   const std::string& name, const std::string& language,
                                   const std::string& ctrlId, const std::string& l1Key,
                                   const std::string& l2Key) {
  return exists(placeOf(scriptType, codeType, name, language, ctrlId, l1Key, l2Key));
}

Ref<AGPCustomScript> AGPCustomScripts::ScriptItem(
    const std::string& scriptType, const std::string& codeType, const std::string& name,
    const std::string& language, const std::string& ctrlId, const std::string& l1Key,
    const std::string& l2Key) {
  return refTo(item(placeOf(scriptType, codeType, name, language, ctrlId, l1Key, l2Key)));
}

Ref<AGPCustomScript> AGPCustomScripts::Seq(std::int16_t index) const {
  for (AGPCustomScript* script : items())
    if (script->seq() == index) return refTo(script);
  return {};
}

bool AGPCustomScripts::Change(const std::string& oldName, const std::string& newName) {
  if (oldName.empty() || newName.empty()) return false;
  std::int32_t position = items_->baseIndex();
  for (AGPCustomScript* script : items()) {
    if (script->attrText("ScriptL1Key") == oldName) {
      script->setAttr("ScriptL1Key", Variant(newName));
      // A key held by another script stays with that one; this script keeps
      // its old key and is still found by its values.
      const std::string key = script->place().key();
      const std::int32_t holder = items_->keyExists(key);
      if (holder == kNoPosition || holder == position) items_->changeKeyAt(position, key);
    }
    ++position;
  }
  return true;
}

void AGPCustomScripts::DeleteTableScripts(const std::string& name) {
  // From the last to the first, so that each deletion leaves the positions
  // still to be visited as they were.
  for (std::int32_t position = items_->baseIndex() + Count() - 1; position >= items_->baseIndex();
       --position) {
    auto& script = static_cast<AGPCustomScript&>(*items_->itemAt(position).object());
    if (text::iequals(script.attrText("ScriptCodeType"), "Table") &&
        script.attrText("ScriptL1Key") == name)
      removeAt(position);
  }
}

const MemberTable& AGPCustomScripts::members() const {
  using C = AGPCustomScripts;
  static const MemberTable table{
      method<&C::Add>("Add"),
      method<&C::Change>("Change"),
      method<&C::Count>("Count"),
      method<&C::Delete>("Delete"),
      method<&C::ScriptExist>("ScriptExist"),
      method<&C::ScriptItem>("ScriptItem"),
      method<&C::Seq>("Seq"),
      method<&C::newEnum>("NewEnum_scrpt"),
      property<&C::curName>("curName"),
      property<&C::curSeq>("curSeq"),
  };
  return table;
}

AGPCustomScripts& CustomScripts() {
  Ref<Dispatch>& slot = AGPVars().CustomScripts;
  if (!slot) slot = make<AGPCustomScripts>();
  return static_cast<AGPCustomScripts&>(*slot);
}

}  // namespace bw
