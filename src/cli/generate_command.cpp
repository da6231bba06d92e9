// brindlework generate: writes the site of a project. It loads the project,
// runs the generation check (which unpacks the template and lists what can
// be generated), applies the choices of --only and --skip, and runs
// generation with a progress display. Questions of the engine are answered
// by --yes/--no and --keep/--overwrite, or asked on the terminal.
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <optional>
#include <set>

#include "cli/cli_host.h"
#include "cli/commands.h"
#include "cli/project_options.h"
#include "core/agp_vars.h"
#include "core/control_items.h"
#include "core/tables.h"
#include "platform/files.h"
#include "platform/text.h"

namespace bw::cli {
namespace {

constexpr const char* kUsage =
    "usage: brindlework generate PROJECT [--dest DIR] [--template ZIP] [--check]\n"
    "                            [--only ID,...] [--skip ID,...] [--yes|--no]\n"
    "                            [--keep|--overwrite] [--save]\n";

struct GenerateRequest {
  std::string projectFile;
  std::optional<std::string> destination;
  std::optional<std::string> templateFile;
  std::optional<std::set<std::string>> only;
  std::set<std::string> skip;
  std::optional<bool> answerYes;
  std::optional<TemplateChoice> templateChoice;
  bool checkOnly = false;
  bool save = false;
};

std::set<std::string> idList(const std::string& text) {
  std::set<std::string> ids;
  for (const std::string& id : text::split(text, ","))
    if (!text::trimBlanks(id).empty()) ids.emplace(text::trimBlanks(id));
  return ids;
}

// Two flags of which at most one may be given.
template <typename T>
std::optional<T> eitherFlag(Arguments& args, const std::string& first, T firstValue,
                            const std::string& second, T secondValue) {
  const bool a = takeFlag(args, first), b = takeFlag(args, second);
  if (a && b) throw BadUsage{first + " and " + second + " exclude each other"};
  if (a) return firstValue;
  if (b) return secondValue;
  return std::nullopt;
}

GenerateRequest parseRequest(const Arguments& argsIn) {
  Arguments args = argsIn;
  GenerateRequest request;
  request.destination = takeOption(args, "--dest");
  request.templateFile = takeOption(args, "--template");
  if (auto only = takeOption(args, "--only")) request.only = idList(*only);
  if (auto skip = takeOption(args, "--skip")) request.skip = idList(*skip);
  request.answerYes = eitherFlag(args, "--yes", true, "--no", false);
  request.templateChoice =
      eitherFlag(args, "--keep", TemplateChoice::Keep, "--overwrite", TemplateChoice::Overwrite);
  request.checkOnly = takeFlag(args, "--check");
  request.save = takeFlag(args, "--save");
  for (const std::string& arg : args)
    if (text::startsWith(arg, "-")) throw BadUsage{"unknown option '" + arg + "'"};
  if (args.size() != 1) throw BadUsage{"give one project file"};
  request.projectFile = args[0];
  return request;
}

// Every list of choices: the project's, then each generated table's.
template <typename Visit>
void forEachList(AGP& project, Visit visit) {
  visit(std::string(), *project.ControlItems());
  for (DefinitionObject* item : project.DB()->Tables()->bySequence()) {
    AGPTable& table = static_cast<AGPTable&>(*item);
    if (table.ControlList()->Count() > 0) visit(table.TblName(), *table.ControlList());
  }
}

template <typename Visit>
void forEachItem(AGControlItems& items, Visit visit) {
  for (std::int32_t k = 1; k <= items.Count(); ++k) visit(*items.Item(Variant(k)));
}

void applyChoices(AGP& project, const GenerateRequest& request) {
  forEachList(project, [&](const std::string&, AGControlItems& items) {
    forEachItem(items, [&](AGControlItem& item) {
      if (request.only) item.ItemGen = request.only->contains(item.ItemId);
      if (request.skip.contains(item.ItemId)) item.ItemGen = false;
    });
  });
}

void printChoices(AGP& project, std::int16_t existing) {
  std::cout << "Template: " << project.attrText("Template") << "\n"
            << "Unpacked in: " << AGPVars().TemplateFolder << "\n"
            << "Destination: " << project.attrText("Destination") << "\n";
  forEachList(project, [&](const std::string& table, AGControlItems& items) {
    std::cout << (table.empty() ? std::string("Project") : "Table " + table) << ":\n";
    forEachItem(items, [&](const AGControlItem& item) {
      const bool exists = !item.ItemDest.empty() && files::fileExists(item.ItemDest);
      std::cout << "  [" << (item.ItemGen ? 'x' : ' ') << "] " << item.ItemId << "  " << item.ItemFn
                << (exists ? "  (exists)" : "") << "\n";
    });
  });
  std::cout
      << (existing > 0
              ? "Some targets exist already; they are overwritten where the template allows.\n"
              : "No target exists yet.\n");
}

std::size_t countFiles(const std::string& folder) {
  std::size_t count = 0;
  std::error_code ec;
  for (auto it = std::filesystem::recursive_directory_iterator(files::nativePath(folder), ec);
       !ec && it != std::filesystem::recursive_directory_iterator(); it.increment(ec))
    if (it->is_regular_file(ec)) ++count;
  return count;
}

}  // namespace

int generateCommand(const Arguments& args) {
  const std::optional<GenerateRequest> parsed =
      parseRequestOrExplain("generate", kUsage, parseRequest, args);
  if (!parsed) return 2;
  const GenerateRequest& request = *parsed;
  TheCliHost()->answerYes = request.answerYes;
  TheCliHost()->templateChoice = request.templateChoice;
  Ref<AGP> project = openProject(request.projectFile);
  if (!project) return 1;
  if (!project->DB()) {
    std::cerr << "brindlework generate: the project has no database\n";
    return 1;
  }
  if (request.destination)
    project->setDestination(std::filesystem::absolute(*request.destination).string());
  if (request.templateFile)
    project->setAttr("Template",
                     Variant(std::filesystem::absolute(*request.templateFile).string()));

  const std::int16_t existing = project->GenCheck();
  if (printProjErr()) return 1;
  if (request.checkOnly) {
    printChoices(*project, existing);
    return 0;
  }
  applyChoices(*project, request);
  project->GenScript();
  if (printProjErr()) return 1;
  const auto& stats = AGPVars().GenerationStats;
  const std::string destination = project->attrText("Destination");
  std::cout << "Generated " << stats.pages << " pages (" << stats.composed
            << " controls composed) into " << destination << "; the site has "
            << countFiles(destination) << " files.\n";
  if (request.save) {
    project->Save(request.projectFile);
    if (printProjErr()) return 1;
  }
  return 0;
}

}  // namespace bw::cli
