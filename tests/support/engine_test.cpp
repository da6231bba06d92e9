#include "support/engine_test.h"

#include <cstdlib>
#include <fstream>

#include "core/agp_vars.h"
#include "core/registry.h"

namespace bw::testing {

void EngineTest::SetUp() {
  std::string pattern = (std::filesystem::temp_directory_path() / "bwtest-XXXXXX").string();
  ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
  temp_ = pattern;
  ::setenv("BRINDLEWORK_USER_HIVE", tempPath("user.reg").c_str(), 1);
  ::setenv("BRINDLEWORK_DOCUMENTS", tempPath("Documents").c_str(), 1);
  ::setenv("BRINDLEWORK_SHARE", sourceShare().c_str(), 1);
  ::setenv("XDG_CONFIG_HOME", tempPath("config").c_str(), 1);
  ResetAGPVars();
  host_ = std::make_shared<RecordingHost>();
  AGPVars().host = host_;
}

void EngineTest::TearDown() {
  ResetAGPVars();
  std::error_code ec;
  std::filesystem::remove_all(temp_, ec);
}

std::string EngineTest::writeTempFile(const std::string& name, const std::string& content) const {
  std::filesystem::path p = temp_ / name;
  std::filesystem::create_directories(p.parent_path());
  std::ofstream(p, std::ios::binary) << content;
  return p.string();
}

void EmptySettingsTest::SetUp() {
  EngineTest::SetUp();
  ::setenv("BRINDLEWORK_MACHINE_HIVE", tempPath("machine.reg").c_str(), 1);
}

void EmptySettingsTest::TearDown() {
  ::unsetenv("BRINDLEWORK_MACHINE_HIVE");
  EngineTest::TearDown();
}

void EmptySettingsTest::setGeneral(const char* name, const Variant& value, int type) {
  WriteSetting("HKCU", AGPVars().RegGeneral, name, type, value);
}

std::string EngineTest::sourceShare() { return BRINDLEWORK_SOURCE_DIR "/share/brindlework"; }

}  // namespace bw::testing
