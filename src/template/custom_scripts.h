// AGPCustomScript, AGPCustomScripts: the user's own code for fixed places of
// the generated application.
//
// A place is named by seven values: where the code goes (ScriptType, such as
// "template"), the kind and name of the place (ScriptCodeType such as
// "Table", ScriptName), the code's language, the control it belongs to, and
// two keys: the table (ScriptL1Key) and the field (ScriptL2Key). Templates
// ask for a place and take its code:
//
//   CUSTOMSCRIPTS.ScriptExist("template", "Table", "list_page_load", "C#", "list", "Orders", "")
//   CUSTOMSCRIPTS.ScriptItem(<the same seven values>).ScriptCode
//
// Matching treats the first five values without regard to case and the two
// keys exactly, so "Orders" and "orders" are two tables. The collection's key
// joins all seven with "_" and ignores case, so it holds one of those two
// only. A script's data is an attribute bag; Seq numbers the scripts 1 to
// Count, which is their order in the project file:
//
//   Add a, b, c      Seq a1 b2 c3
//   Delete b          Seq a1 c2
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/dispatch.h"
#include "core/properties.h"
#include "core/super_collection.h"

namespace bw {

// The seven values that name the place of a script.
struct ScriptPlace {
  std::string ScriptType, ScriptCodeType, ScriptName, ScriptLanguage, ScriptCtrlID;
  std::string ScriptL1Key, ScriptL2Key;

  // The collection key: the seven values joined with "_".
  std::string key() const;
  // Add and Delete refuse a place without type, code type, name or language.
  bool complete() const;
};

// Seq, then the seven place attributes, then ScriptCode; all kept out of the
// settings store. Seq and ScriptCode are not file attributes: the element
// order is the sequence, and the code is the element's CDATA section.
const Ref<const PropertyLayout>& CustomScriptLayout();

class AGPCustomScript : public Dispatch {
 public:
  AGPCustomScript();

  // The key the collection holds the script under.
  std::string Key() const { return key_; }
  void setKey(const std::string& key) { key_ = key; }
  Ref<AGProperties> Properties() const { return properties_; }
  // Every write makes the project dirty, even of the same text.
  std::string ScriptCode() { return attrText("ScriptCode"); }
  void setScriptCode(const std::string& code);

  // C++ access to the bag, as the typed properties read and write it.
  Variant typedAttr(std::string_view name);
  std::string attrText(std::string_view name) { return properties_->value(name).toText(); }
  void setAttr(std::string_view name, Variant value) {
    properties_->setValue(name, std::move(value));
  }
  std::int16_t seq() { return typedAttr("Seq").integer(); }
  void setSeq(std::int16_t seq) { setAttr("Seq", Variant(seq)); }
  ScriptPlace place();

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPCustomScript"; }

 private:
  Ref<AGProperties> properties_;
  std::string key_;
};

class AGPCustomScripts : public Dispatch {
 public:
  AGPCustomScripts();

  // Appends a script for the place with the next Seq, or finds the one that
  // is there; both give true and move the cursors to it. False for a place
  // without type, code type, name or language, and for a place whose key the
  // collection holds for another script (keys that differ only in case).
  bool Add(const std::string& scriptType, const std::string& codeType, const std::string& name,
           const std::string& language, const std::string& ctrlId, const std::string& l1Key,
           const std::string& l2Key);
  // Moves every script of table `oldName` (compared exactly) to `newName`.
  // False if either is "".
  bool Change(const std::string& oldName, const std::string& newName);
  std::int32_t Count() const { return items_->count(); }
  // Removes the script of the place and closes the gap in Seq; false when
  // there is none.
  bool Delete(const std::string& scriptType, const std::string& codeType, const std::string& name,
              const std::string& language, const std::string& ctrlId, const std::string& l1Key,
              const std::string& l2Key);
  // Whether a script has this place. With type "template" and both name and
  // control id "", also whether any script of that code type is on those keys.
  bool ScriptExist(const std::string& scriptType, const std::string& codeType,
                   const std::string& name, const std::string& language, const std::string& ctrlId,
                   const std::string& l1Key, const std::string& l2Key);
  // The script of exactly this place, or none; a hit moves the cursors.
  Ref<AGPCustomScript> ScriptItem(const std::string& scriptType, const std::string& codeType,
                                  const std::string& name, const std::string& language,
                                  const std::string& ctrlId, const std::string& l1Key,
                                  const std::string& l2Key);
  // The script numbered `index`, or none; the cursors stay.
  Ref<AGPCustomScript> Seq(std::int16_t index) const;
  // The key and Seq of the script last added or fetched.
  std::string curName() const { return curName_; }
  std::int16_t curSeq() const { return curSeq_; }

  // Deletes the scripts of code type "Table" on table `name`, compared
  // exactly, as the table goes.
  void DeleteTableScripts(const std::string& name);

  // C++ access by place; the same rules as the members above.
  bool add(const ScriptPlace& place);
  bool remove(const ScriptPlace& place);
  bool exists(const ScriptPlace& place);
  AGPCustomScript* item(const ScriptPlace& place);
  // In collection order, and ordered by Seq (for writing the file).
  std::vector<AGPCustomScript*> items() const;
  std::vector<AGPCustomScript*> bySequence() const;

  Ref<EnumVariant> newEnum() override { return items_->newEnum(); }
  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPCustomScripts"; }

 private:
  // The first script that matches all seven values, and its position.
  AGPCustomScript* findExact(const ScriptPlace& place, std::int32_t* position = nullptr) const;
  void setCursors(AGPCustomScript& script);
  // Removes the script at `position`, closing its gap in Seq.
  void removeAt(std::int32_t position);

  Ref<CSuperCollection> items_;
  std::string curName_;
  std::int16_t curSeq_ = 0;
};

// The project's one list of custom scripts, created on first use.
AGPCustomScripts& CustomScripts();

}  // namespace bw
