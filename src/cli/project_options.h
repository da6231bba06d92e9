// Options that several commands share: the project to open.
#pragma once

#include <iostream>
#include <optional>
#include <string>
#include <string_view>

#include "cli/commands.h"
#include "project/agp.h"

namespace bw::cli {

struct BadUsage {
  std::string message;
};

// A command's request, read from its arguments by `parse`. A usage error is
// printed as "brindlework COMMAND: <message>" and the usage text, and gives
// nothing: the command then ends with exit code 2.
template <typename Request>
std::optional<Request> parseRequestOrExplain(std::string_view command, std::string_view usage,
                                             Request (*parse)(const Arguments&),
                                             const Arguments& args) {
  try {
    return parse(args);
  } catch (const BadUsage& e) {
    std::cerr << "brindlework " << command << ": " << e.message << '\n' << usage;
    return std::nullopt;
  }
}

// Prints ProjErr when the last engine call left one, and says whether it did.
bool printProjErr();

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
