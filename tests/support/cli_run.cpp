#include "support/cli_run.h"

#include <sys/wait.h>

#include <cstdlib>

#include "platform/files.h"

namespace bw::testing {
namespace {

std::string shellQuoted(const std::string& arg) {
  std::string quoted = "'";
  for (char c : arg) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

}  // namespace

CliRun RunCli(const std::vector<std::string>& args, const std::string& scratchDir) {
  const std::string out = scratchDir + "/cli.out";
  const std::string err = scratchDir + "/cli.err";
  std::string command = shellQuoted(BRINDLEWORK_CLI);
  for (const std::string& arg : args) command += " " + shellQuoted(arg);
  command += " >" + shellQuoted(out) + " 2>" + shellQuoted(err);
  const int status = std::system(command.c_str());
  return CliRun{WIFEXITED(status) ? WEXITSTATUS(status) : -1, files::readFile(out).value_or(""),
                files::readFile(err).value_or("")};
}

}  // namespace bw::testing
