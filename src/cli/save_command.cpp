// brindlework save: loads a project file and saves it again, to another
// file or in place. Saving over a file keeps the old one in the backup
// folder, as every save does. Useful to bring a file into the current form, or to check that
// a file survives a load and save unchanged.
#include <iostream>
#include <optional>

#include "cli/commands.h"
#include "cli/project_options.h"
#include "core/agp_vars.h"
#include "platform/text.h"

namespace bw::cli {
namespace {

constexpr const char* kUsage = "usage: brindlework save PROJECT [-o OUT]\n";

struct SaveRequest {
  std::string projectFile;
  std::string outputFile;
};

SaveRequest parseRequest(const Arguments& argsIn) {
  Arguments args = argsIn;
  std::optional<std::string> output = takeOption(args, "-o");
  if (!output) output = takeOption(args, "--output");
  for (const std::string& arg : args)
    if (text::startsWith(arg, "-") && arg != "-") throw BadUsage{"unknown option '" + arg + "'"};
  if (args.size() != 1) throw BadUsage{"give one project file"};
  if (output && output->empty()) throw BadUsage{"-o needs a file name"};
  return SaveRequest{args[0], output.value_or(args[0])};
}

}  // namespace

int saveCommand(const Arguments& args) {
  const std::optional<SaveRequest> parsed =
      parseRequestOrExplain("save", kUsage, parseRequest, args);
  if (!parsed) return 2;
  const SaveRequest& request = *parsed;
  Ref<AGP> project = openProject(request.projectFile);
  if (!project) return 1;
  AGPVars().ProjErr.clear();
  project->Save(request.outputFile);
  return printProjErr() ? 1 : 0;
}

}  // namespace bw::cli
