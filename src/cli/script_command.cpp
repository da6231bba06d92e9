// brindlework script: runs a JScript automation script against a new
// project object bound as PROJ, the way a desktop host drives the engine.
// The project's shared objects are bound under the names that templates
// know them by (LANGUAGE, MASTERDETAILS, CUSTOMSCRIPTS, MENULIST).
// WScript.Echo prints a line; WScript.Quit(code) ends the script with that
// exit code. With --save the project is saved to its file when the script
// ran to its end.
#include <iostream>

#include "cli/commands.h"
#include "cli/project_options.h"
#include "core/agp_vars.h"
#include "persistence/master_details.h"
#include "platform/files.h"
#include "template/script_engine.h"

namespace bw::cli {
namespace {

// Thrown through the engine by Quit, caught below by its number.
constexpr std::int32_t kQuitNumber = 0x7FFF0001;

class ScriptHostObject : public Dispatch {
 public:
  std::int32_t exitCode = 0;

  const MemberTable& members() const override {
    static const MemberTable table{
        Member{"Echo", Member::Kind::Method, 0, 255,
               [](Dispatch&, const Member&, Args args) {
                 for (std::size_t k = 0; k < args.size(); ++k)
                   std::cout << (k ? " " : "") << args[k].toText();
                 std::cout << '\n';
                 return Variant();
               }},
        Member{"Quit", Member::Kind::Method, 0, 1,
               [](Dispatch& self, const Member&, Args args) -> Variant {
                 static_cast<ScriptHostObject&>(self).exitCode =
                     args.empty() ? 0 : args[0].toLong().value_or(0);
                 throw AutomationError(kQuitNumber, "quit");
               }},
    };
    return table;
  }
  std::string_view typeName() const override { return "WScript"; }
};

void printError(const std::string& file, const ScriptError& e) {
  std::cerr << file;
  if (e.line) std::cerr << '(' << e.line << (e.column ? "," + std::to_string(e.column) : "") << ')';
  std::cerr << ": " << e.source << ": " << e.description << '\n';
  if (!e.text.empty()) std::cerr << "  " << e.text << '\n';
}

int saveProject(AGP& project, const std::string& file) {
  project.Save(file);
  return printProjErr() ? 1 : 0;
}

}  // namespace

int scriptCommand(const Arguments& argsIn) {
  Arguments args = argsIn;
  Ref<AGP> project;
  std::optional<std::string> projectFile;
  bool save = false;
  try {
    projectFile = takeProjectOption(args);
    save = takeFlag(args, "--save");
    if (save && !projectFile) throw BadUsage{"--save needs --project"};
    if (args.size() != 1) throw BadUsage{"give one script file"};
    project = openProject(projectFile);
  } catch (const BadUsage& e) {
    std::cerr << "brindlework script: " << e.message
              << "\nusage: brindlework script FILE.js [--project P [--save]]\n";
    return 2;
  }
  if (!project) return 1;
  const std::string& file = args[0];
  if (!files::fileExists(file)) {
    std::cerr << "brindlework script: cannot read '" << file << "'\n";
    return 1;
  }

  auto engine = CreateScriptEngine();
  auto host = make<ScriptHostObject>();
  if (!engine->setLanguage("JScript")) {
    printError(file, engine->error());
    return 1;
  }
  engine->addObject("PROJ", project);
  engine->addObject("LANGUAGE", project->Language());
  engine->addObject("MASTERDETAILS", refTo(&MasterDetails()));
  engine->addObject("CUSTOMSCRIPTS", project->customscripts());
  engine->addObject("MENULIST", project->MenuList());
  engine->addObject("WScript", host);
  if (engine->addCode(files::readTextFile(file)))
    return save ? saveProject(*project, *projectFile) : 0;
  if (engine->error().number == kQuitNumber) return host->exitCode;
  printError(file, engine->error());
  return 1;
}

}  // namespace bw::cli
