// Options that several commands share: the project to open.
#pragma once

#include <optional>
#include <string>

#include "cli/commands.h"
#include "core/agp.h"

namespace bw::cli {

struct BadUsage {
  std::string message;
};

// Removes "--project P" from `args` and gives P.
std::optional<std::string> takeProjectOption(Arguments& args);

// Removes "NAME VALUE" for option `name` from `args` and gives VALUE.
std::optional<std::string> takeOption(Arguments& args, const std::string& name);

// Removes the switch `name` from `args` and gives whether it was there.
bool takeFlag(Arguments& args, const std::string& name);

// A new project object; with a project file, that project loaded. On a
// failure, prints ProjErr and gives null; a file without a database loads
// with that message printed as a warning.
Ref<AGP> openProject(const std::optional<std::string>& projectFile);

}  // namespace bw::cli
