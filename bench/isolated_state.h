// Benchmarks run against a settings store and documents folder of their own,
// so that they neither read nor change the user's.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

#include "core/agp_vars.h"

namespace bench {

inline void isolateEngineState(const std::string& name) {
  const auto dir = std::filesystem::temp_directory_path() / ("bw-" + name);
  std::filesystem::create_directories(dir);
  setenv("BRINDLEWORK_USER_HIVE", (dir / "user.reg").c_str(), 1);
  setenv("BRINDLEWORK_DOCUMENTS", (dir / "Documents").c_str(), 1);
  bw::ResetAGPVars();
}

}  // namespace bench
