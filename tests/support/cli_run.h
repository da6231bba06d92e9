// Runs the built brindlework program, or another one, as a user would from a shell.
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

// Runs `command` (program and arguments) with the environment's variables
// plus `env` ("NAME=value" entries); output as for RunCli.
CliRun RunProgram(const std::vector<std::string>& command, const std::string& scratchDir,
                  const std::vector<std::string>& env = {});

}  // namespace bw::testing
