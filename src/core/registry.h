// cRegistry: access to the settings store, and the ReadSetting/WriteSetting
// helpers that nearly every part of the engine calls.
//
// The store has two hives with the paths, value names and value types of a
// Windows registry: the machine hive (defaults shipped with the engine) and
// the user hive (copied from it on a user's first run, then changed by the
// engine). Each hive is a text file, see platform/settings_hive.h. The
// classes root is kept in the user hive under "Software\Classes".
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/dispatch.h"
#include "platform/settings_hive.h"

namespace bw {

inline constexpr std::int32_t kHiveClassesRoot = static_cast<std::int32_t>(0x80000000u);
inline constexpr std::int32_t kHiveCurrentUser = static_cast<std::int32_t>(0x80000001u);
inline constexpr std::int32_t kHiveLocalMachine = static_cast<std::int32_t>(0x80000002u);

// Value types.
namespace reg_type {
inline constexpr std::int32_t kText = 1;
inline constexpr std::int32_t kExpandText = 2;  // with %NAME% references
inline constexpr std::int32_t kBinary = 3;
inline constexpr std::int32_t kNumber = 4;
inline constexpr std::int32_t kNumberBigEndian = 5;
inline constexpr std::int32_t kMultiText = 7;
}  // namespace reg_type

// Error numbers raised by cRegistry.
namespace reg_error {
inline constexpr std::int32_t kFailed = 26001;
inline constexpr std::int32_t kStoreRefused = -2147194455;
inline constexpr std::int32_t kEnumerateSections = -2147194454;
inline constexpr std::int32_t kBadAssociationList = -2147194452;
inline constexpr std::int32_t kClassNotDefined = -2147194451;
}  // namespace reg_error

// Access to one value or key of the store. The request fields (ClassKey,
// SectionKey, ValueKey, ValueType, Default) persist between calls, so a
// caller sets all of them before each operation. Each operation opens and
// closes its key; nothing stays open between calls. Failures raise
// AutomationError with source "brindlework.cRegistry".
//
//   cRegistry& reg = Registry();
//   reg.setClassKey(kHiveCurrentUser);
//   reg.setSectionKey(AGPVars().RegGeneral);
//   reg.setValueKey("ScriptEngineTimeout");
//   reg.setValueType(reg_type::kNumber);
//   reg.setValue(60000);
//
// In scripts, EnumerateValues() and EnumerateSections() take no arguments
// and return an array of the names (empty when the key cannot be opened),
// since a script cannot pass an array to be filled.
class cRegistry : public Dispatch {
 public:
  cRegistry();
  ~cRegistry() override;

  // The request. ClassKey is one of the kHive* numbers; SectionKey the key's
  // path; ValueKey the value's name ("" for the key's default value).
  std::int32_t ClassKey() const { return classKey_; }
  void setClassKey(std::int32_t hive) { classKey_ = hive; }
  const std::string& SectionKey() const { return sectionKey_; }
  void setSectionKey(const std::string& path) { sectionKey_ = path; }
  const std::string& ValueKey() const { return valueKey_; }
  void setValueKey(const std::string& name) { valueKey_ = name; }
  // The type to write; after a read, the type found.
  std::int32_t ValueType() const { return valueType_; }
  void setValueType(std::int32_t type) { valueType_ = type; }
  // What a read of a missing key or value gives.
  const Variant& Default() const { return default_; }
  void setDefault(const Variant& value) { default_ = value; }

  bool KeyExists();
  bool CreateKey();
  // A key that still has subkeys is not deleted: that raises, as a
  // registry does.
  bool DeleteKey();
  bool DeleteValue();

  // Reads the value: a string for types 1, 2 (references expanded) and 7
  // (NUL separators kept), a Long for 4 and 5, a byte array otherwise.
  Variant Value();
  // Writes by ValueType: 1 and 2 as text (type 2 when the text holds a
  // %NAME% reference), 3 a byte array only, 4 and 5 a 16-bit or 32-bit
  // integer as type 4; anything else writes nothing.
  void setValue(const Variant& value);

  // The names of the key's values or subkeys, in the store's order; false
  // (and no names) when the key cannot be opened.
  bool EnumerateValues(std::vector<std::string>& names, std::int32_t& count);
  bool EnumerateSections(std::vector<std::string>& sections, std::int32_t& count);

  // Registers a file type in the classes root for a program: open, and
  // optionally print, install and new verbs, and an icon.
  void CreateEXEAssociation(const std::string& programPath, const std::string& className,
                            const std::string& classDescription, const std::string& extension,
                            const std::string& openText, bool print, const std::string& printText,
                            bool makeNew, const std::string& newText, bool install,
                            const std::string& installText, std::int32_t iconIndex);
  // Adds verbs to a registered class; `items` is an array of name, text,
  // command triples.
  void CreateAdditionalEXEAssociations(const std::string& className, const Variant& items);

  // Why the hive of ClassKey cannot be read ("file:line: problem"), or ""
  // when it can. Reads of a broken hive find nothing and writes are refused.
  std::string StoreProblem();

  // Collects the writes to the hive of ClassKey into one write of its file
  // until the batch ends.
  settings::Hive::Batch BatchWrites();

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "cRegistry"; }

 private:
  struct Location;
  std::optional<Location> locate();
  std::shared_ptr<settings::Hive> hiveFor(std::int32_t classKey);
  [[noreturn]] void raise(std::int32_t number, std::string description) const;
  std::string describeKey() const;
  void writeClassDefault(const std::string& path, const std::string& text);
  void writeVerb(const std::string& className, const std::string& verb, const std::string& text,
                 const std::string& command);
  Variant valueNamesForScripts();
  Variant sectionNamesForScripts();

  std::int32_t classKey_ = kHiveCurrentUser;
  std::string sectionKey_;
  std::string valueKey_;
  std::int32_t valueType_ = 0;
  Variant default_;
  std::shared_ptr<settings::Hive> userHive_;
  std::shared_ptr<settings::Hive> machineHive_;
};

// The shared cRegistry of AGPVars, created on first use.
cRegistry& Registry();

// Reads a value; `hive` "HKLM" (exactly) is the machine hive, anything else
// the user hive. Never raises: a failed read gives Empty. Copies the type
// found to AGPVars().RegValueType, 0 when nothing was found.
Variant ReadSetting(const Variant& hive, const Variant& section, const Variant& name);

// A value of the user's general settings, and the same read as a Boolean
// (false when it is not one).
Variant GeneralSetting(const char* name);
bool GeneralFlag(const char* name);

// Writes a value with the given type. Never raises; failures are swallowed.
void WriteSetting(const Variant& hive, const Variant& section, const Variant& name,
                  const Variant& type, const Variant& value);

}  // namespace bw
