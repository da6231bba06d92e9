// Runs the built brindlework program, as a user would from a shell.
#pragma once

#include <string>
#include <vector>

namespace bw::testing {

struct CliRun {
  int exitCode = -1;
  std::string out;
  std::string err;
};

// Runs `brindlework <args...>`; its output goes through files in `scratchDir`.
CliRun RunCli(const std::vector<std::string>& args, const std::string& scratchDir);

}  // namespace bw::testing
