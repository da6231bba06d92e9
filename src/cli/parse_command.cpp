// brindlework parse: runs template text through the engine's ParseScript
// and prints what it outputs.
#include <iostream>

#include "cli/commands.h"
#include "cli/project_options.h"
#include "core/agp_vars.h"
#include "platform/files.h"

namespace bw::cli {

int parseCommand(const Arguments& argsIn) {
  Arguments args = argsIn;
  std::string source;
  Ref<AGP> project;
  try {
    const auto projectFile = takeProjectOption(args);
    const auto file = takeOption(args, "--file");
    if (file && !args.empty()) throw BadUsage{"give either --file or TEXT, not both"};
    if (!file && args.size() != 1) throw BadUsage{"give the template text, or --file FILE"};
    if (file) {
      if (!files::fileExists(*file)) {
        std::cerr << "brindlework parse: cannot read '" << *file << "'\n";
        return 1;
      }
      source = files::readTextFile(*file);
    } else {
      source = args[0];
    }
    project = openProject(projectFile);
  } catch (const BadUsage& e) {
    std::cerr << "brindlework parse: " << e.message
              << "\nusage: brindlework parse [--project P] (--file F | TEXT)\n";
    return 2;
  }
  if (!project) return 1;

  AGPVars().ProjErr.clear();
  const std::string output = project->ParseScript(source);
  if (printProjErr()) return 1;
  std::cout << output;
  if (!output.empty() && output.back() != '\n') std::cout << '\n';
  return 0;
}

}  // namespace bw::cli
