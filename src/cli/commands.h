// The subcommands of the brindlework command. Each takes the arguments that
// follow its name and returns the process exit code.
#pragma once

#include <string>
#include <vector>

namespace bw::cli {

using Arguments = std::vector<std::string>;

int settingsCommand(const Arguments& args);  // list, get and set settings of the store
int parseCommand(const Arguments& args);     // run template text through ParseScript
int scriptCommand(const Arguments& args);    // run a JScript automation script
int infoCommand(const Arguments& args);      // show a project file's database, tables and fields
int saveCommand(const Arguments& args);      // load a project file and save it again
int newCommand(const Arguments& args);       // create a project over a database
int generateCommand(const Arguments& args);  // write the site of a project

}  // namespace bw::cli
