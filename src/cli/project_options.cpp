#include "cli/project_options.h"

#include <algorithm>
#include <iostream>

#include "core/agp_vars.h"
#include "core/databases.h"

namespace bw::cli {

std::optional<std::string> takeOption(Arguments& args, const std::string& name) {
  for (std::size_t k = 0; k < args.size(); ++k) {
    if (args[k] != name) continue;
    if (k + 1 == args.size()) throw BadUsage{name + " needs a value"};
    std::string value = args[k + 1];
    args.erase(args.begin() + static_cast<std::ptrdiff_t>(k),
               args.begin() + static_cast<std::ptrdiff_t>(k + 2));
    return value;
  }
  return std::nullopt;
}

bool takeFlag(Arguments& args, const std::string& name) {
  const auto it = std::find(args.begin(), args.end(), name);
  if (it == args.end()) return false;
  args.erase(it);
  return true;
}

bool printProjErr() {
  const std::string& error = AGPVars().ProjErr;
  if (error.empty()) return false;
  std::cerr << error << '\n';
  return true;
}

std::optional<std::string> takeProjectOption(Arguments& args) {
  return takeOption(args, "--project");
}

Ref<AGP> openProject(const std::optional<std::string>& projectFile) {
  auto project = make<AGP>();
  if (!projectFile) return project;
  project->Load(*projectFile, false);
  const std::string& error = AGPVars().ProjErr;
  if (error.empty()) return project;
  std::cerr << error << '\n';
  // A project without a database is still a project: commands that need
  // one say so themselves.
  if (!project->DB() && AGPVars().ProjectFile == *projectFile) {
    AGPVars().ProjErr.clear();
    return project;
  }
  return {};
}

}  // namespace bw::cli
