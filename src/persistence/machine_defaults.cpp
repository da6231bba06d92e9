#include "persistence/machine_defaults.h"

#include <exception>
#include <string>
#include <vector>

#include "core/agp_vars.h"
#include "core/registry.h"

namespace bw {
namespace {

// Copies the values of `path` and, depth first, of every key below it, from
// the machine hive to the user hive.
void copyTree(const std::string& path) {
  cRegistry& registry = Registry();
  std::vector<std::string> names;
  std::int32_t count = 0;
  registry.setClassKey(kHiveLocalMachine);
  registry.setSectionKey(path);
  registry.EnumerateValues(names, count);
  for (const std::string& name : names) {
    const Variant value = ReadSetting("HKLM", path, name);
    WriteSetting("HKCU", path, name, AGPVars().RegValueType, value);
  }

  registry.setClassKey(kHiveLocalMachine);
  registry.setSectionKey(path);
  registry.EnumerateSections(names, count);
  for (const std::string& subkey : names) copyTree(path + "\\" + subkey);
}

}  // namespace

void CopyMachineDefaults() {
  const AGPVarsData& vars = AGPVars();
  cRegistry& registry = Registry();
  registry.setClassKey(kHiveCurrentUser);
  settings::Hive::Batch userWrites = registry.BatchWrites();
  try {
    for (const std::string& tree : {vars.RegFilters, SettingsRoot(), vars.RegExtensions})
      copyTree(tree);
  } catch (const std::exception&) {
    // Only a machine hive that cannot be read raises here; what was copied
    // stays, and the next first-run check tries again.
  }
  (void)userWrites.commit();
}

}  // namespace bw
