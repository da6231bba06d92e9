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
#include <string>
#include <string_view>
#include <vector>

#include "core/dispatch.h"

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

class cRegistry;

// The shared cRegistry of AGPVars, created on first use.
cRegistry& Registry();

// Reads a value; `hive` "HKLM" (exactly) is the machine hive, anything else
// the user hive. Never raises: a failed read gives Empty. Copies the type
// found to AGPVars().RegValueType.
Variant ReadSetting(const Variant& hive, const Variant& section, const Variant& name);

// Writes a value with the given type. Never raises; failures are swallowed.
void WriteSetting(const Variant& hive, const Variant& section, const Variant& name,
                  const Variant& type, const Variant& value);

}  // namespace bw
