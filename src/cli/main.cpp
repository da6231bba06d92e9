// brindlework: the command-line host of the engine. It parses options and
// calls the library; all the work happens there.
#include <cstring>
#include <functional>
#include <iostream>
#include <map>
#include <memory>

#include "cli/cli_host.h"
#include "cli/commands.h"
#include "cli/terminal_progress.h"
#include "core/agp_vars.h"

namespace {

using bw::cli::Arguments;

struct Command {
  const char* usage;
  std::function<int(const Arguments&)> run;
};

const std::map<std::string, Command>& commands() {
  static const std::map<std::string, Command> table{
      {"settings", {"settings list|get|set ... (settings --help)", bw::cli::settingsCommand}},
      {"parse", {"parse [--project P] (--file F | TEXT)", bw::cli::parseCommand}},
      {"script", {"script FILE.js [--project P [--save]]", bw::cli::scriptCommand}},
      {"info", {"info PROJECT [--fields] [--json]", bw::cli::infoCommand}},
      {"save", {"save PROJECT [-o OUT]", bw::cli::saveCommand}},
      {"new", {"new PROJECT --db-type SQLITE --db FILE [--name NAME] [--template ZIP] [--dest DIR] "
               "[--language C#|VB]", bw::cli::newCommand}},
      {"generate", {"generate PROJECT [--dest DIR] [--template ZIP] [--check] [--only ID,...] "
                    "[--skip ID,...] [--yes|--no] [--keep|--overwrite] [--save]",
                    bw::cli::generateCommand}},
  };
  return table;
}

void printUsage(std::ostream& out) {
  out << "usage: brindlework --version\n";
  for (const auto& [name, command] : commands()) out << "       brindlework " << command.usage << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  bw::AGPVars().host = bw::cli::TheCliHost();
  bw::AGPVars().progress = std::make_shared<bw::cli::TerminalProgress>();
  if (argc < 2 || !std::strcmp(argv[1], "--help") || !std::strcmp(argv[1], "-h")) {
    printUsage(argc < 2 ? std::cerr : std::cout);
    return argc < 2 ? 2 : 0;
  }
  if (!std::strcmp(argv[1], "--version")) {
    std::cout << "brindlework " << BRINDLEWORK_VERSION_MAJOR << '.' << BRINDLEWORK_VERSION_MINOR
              << '.' << BRINDLEWORK_VERSION_PATCH << '\n';
    return 0;
  }
  auto it = commands().find(argv[1]);
  if (it == commands().end()) {
    std::cerr << "brindlework: unknown command '" << argv[1] << "'\n";
    printUsage(std::cerr);
    return 2;
  }
  return it->second.run(Arguments(argv + 2, argv + argc));
}
