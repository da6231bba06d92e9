// brindlework new: creates a project over a database. It adds the project,
// reads the database's schema and saves the project file; an existing file
// is never overwritten, and nothing is written when the schema cannot be read.
#include <filesystem>
#include <iostream>
#include <optional>

#include "cli/commands.h"
#include "cli/project_options.h"
#include "core/agp_vars.h"
#include "platform/text.h"

namespace bw::cli {
namespace {

constexpr const char* kUsage =
    "usage: brindlework new PROJECT --db-type SQLITE --db FILE [--name NAME] [--template ZIP]\n"
    "                       [--dest DIR] [--language C#|VB]\n";

struct NewRequest {
  std::string projectFile;
  std::string dbType;
  std::string dbFile;
  std::string name;
  std::optional<std::string> templateFile;
  std::optional<std::string> destination;
  std::optional<std::string> language;
};

std::string requiredOption(Arguments& args, const std::string& name) {
  std::optional<std::string> value = takeOption(args, name);
  if (!value || value->empty()) throw BadUsage{name + " is required"};
  return *value;
}

NewRequest parseRequest(const Arguments& argsIn) {
  Arguments args = argsIn;
  NewRequest request;
  request.dbType = requiredOption(args, "--db-type");
  request.dbFile = requiredOption(args, "--db");
  request.name = takeOption(args, "--name").value_or("");
  request.templateFile = takeOption(args, "--template");
  request.destination = takeOption(args, "--dest");
  request.language = takeOption(args, "--language");
  if (request.language && *request.language != "C#" && *request.language != "VB")
    throw BadUsage{"--language takes C# or VB"};
  for (const std::string& arg : args)
    if (text::startsWith(arg, "-")) throw BadUsage{"unknown option '" + arg + "'"};
  if (args.size() != 1) throw BadUsage{"give one project file"};
  request.projectFile = args[0];
  if (request.name.empty())
    request.name = std::filesystem::path(request.projectFile).stem().string();
  return request;
}

// Tables that could not be read are in the project all the same; the user
// should know which and why.
void reportUnreadTables(AGPDatabase& db) {
  for (DefinitionObject* table : db.Tables()->bySequence()) {
    const std::string error = table->attrText("TblError");
    if (!error.empty())
      std::cerr << "warning: " << table->attrText("TblName") << ": " << error << '\n';
  }
}

std::int32_t fieldCount(AGPDatabase& db) {
  std::int32_t count = 0;
  for (DefinitionObject* table : db.Tables()->bySequence())
    count += static_cast<AGPTable*>(table)->Fields()->Count();
  return count;
}

int createProject(const NewRequest& request) {
  Ref<AGP> project = openProject(std::nullopt);
  AGPVars().ProjErr.clear();
  project->AddProj(request.name);
  if (request.language) project->setProgramLanguage(*request.language);
  if (request.templateFile)
    project->setAttr("Template",
                     Variant(std::filesystem::absolute(*request.templateFile).string()));
  if (request.destination) project->setDestination(*request.destination);
  const std::string dbPath = std::filesystem::absolute(request.dbFile).string();
  project->LoadDB(Variant(std::filesystem::path(request.dbFile).stem().string()),
                  Variant(request.dbType), Variant(""), Variant(""), Variant(false), Variant(""),
                  Variant(""), Variant("Data Source=" + dbPath + ";"), Variant(""));
  if (printProjErr()) return 1;
  Ref<AGPDatabase> db = project->DB();
  // A SQLite database is a file: generation copies it into the site from
  // its physical path.
  db->setAttr("DBPhyPath", Variant(dbPath));
  reportUnreadTables(*db);
  project->Save(request.projectFile);
  if (printProjErr()) return 1;
  std::cout << "Created " << request.projectFile << ": " << db->Tables()->Count()
            << " tables and views, " << fieldCount(*db) << " fields\n";
  return 0;
}

}  // namespace

int newCommand(const Arguments& args) {
  const std::optional<NewRequest> parsed = parseRequestOrExplain("new", kUsage, parseRequest, args);
  if (!parsed) return 2;
  const NewRequest& request = *parsed;
  if (std::filesystem::exists(request.projectFile)) {
    std::cerr << "brindlework new: " << request.projectFile
              << " already exists; choose another file\n";
    return 1;
  }
  return createProject(request);
}

}  // namespace bw::cli
