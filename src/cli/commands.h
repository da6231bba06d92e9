// The subcommands of the brindlework command. Each takes the arguments that
// follow its name and returns the process exit code.
#pragma once

#include <string>
#include <vector>

namespace bw::cli {

using Arguments = std::vector<std::string>;


}  // namespace bw::cli
