// EngineTest: the fixture for tests that touch engine state.
//
// Each test gets a fresh AGPVars, its own temporary folder, and settings
// hives and a documents folder inside it, so that tests never see each
// other's files or the developer's real settings. Messages the engine shows
// are kept in host().
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "core/variant.h"
#include "platform/host.h"

namespace bw::testing {

class EngineTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // The test's own folder, removed afterwards.
  const std::filesystem::path& tempDir() const { return temp_; }
  std::string tempPath(const std::string& name) const { return (temp_ / name).string(); }

  // Writes a file below tempDir() and returns its path.
  std::string writeTempFile(const std::string& name, const std::string& content) const;

  RecordingHost& host() { return *host_; }

  // The source tree's share/brindlework folder.
  static std::string sourceShare();

 private:
  std::filesystem::path temp_;
  std::shared_ptr<RecordingHost> host_;
};

// Engine tests over an empty machine hive: no shipped defaults, so that a
// test sees only the settings it writes.
class EmptySettingsTest : public EngineTest {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Writes a value of section General in the user hive (type 1 text, 4 number).
  static void setGeneral(const char* name, const Variant& value, int type = 1);
};

}  // namespace bw::testing
