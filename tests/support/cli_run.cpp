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
  std::vector<std::string> command{BRINDLEWORK_CLI};
  command.insert(command.end(), args.begin(), args.end());
  return RunProgram(command, scratchDir);
}

CliRun RunProgram(const std::vector<std::string>& command, const std::string& scratchDir,
                  const std::vector<std::string>& env) {
  const std::string out = scratchDir + "/cli.out";
  const std::string err = scratchDir + "/cli.err";
  std::string line;
  for (const std::string& assignment : env) {
    const size_t equals = assignment.find('=');
    line += assignment.substr(0, equals) + "=" + shellQuoted(assignment.substr(equals + 1)) + " ";
  }
  for (const std::string& arg : command) line += shellQuoted(arg) + " ";
  line += ">" + shellQuoted(out) + " 2>" + shellQuoted(err);
  const int status = std::system(line.c_str());
  return CliRun{WIFEXITED(status) ? WEXITSTATUS(status) : -1, files::readFile(out).value_or(""),
                files::readFile(err).value_or("")};
}

}  // namespace bw::testing
