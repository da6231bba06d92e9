// What reaches the site without a script: the template's static files and
// folders, the project's database, and the user's style sheet, logo and
// icon. Each operation has the walk's two modes: check mode registers an
// item and counts existing targets, real mode copies.
#include <filesystem>
#include <system_error>

#include "core/agp_vars.h"
#include "core/control_items.h"
#include "core/generation_error.h"
#include "core/project.h"
#include "core/status.h"
#include "core/tables.h"
#include "generation/generation.h"
#include "generation/output_files.h"
#include "platform/files.h"
#include "platform/host.h"
#include "platform/text.h"
#include "schema/connection.h"
#include "template/controls.h"
#include "template/output_file.h"
#include "template/project_template.h"
#include "template/template_folders.h"

namespace bw {
namespace {

namespace fs = std::filesystem;

std::string absolutePath(const std::string& path) {
  std::error_code ec;
  return fs::absolute(files::nativePath(path), ec).lexically_normal().string();
}

std::string withoutLeadingTilde(std::string_view path) {
  std::string out(text::trimBlanks(path));
  if (out.starts_with("~")) out.erase(0, 1);
  return out;
}

// The database file of a server database attached from a file, as
// "AttachDbFilename=<file>;" in a SQL Server Express connection string.
std::string attachedDatabaseFile(const std::string& connStr) {
  const std::size_t key = text::ifindAscii(connStr, "AttachDbFilename");
  if (key == std::string::npos || text::ifindAscii(connStr, "\\SQLExpress") == std::string::npos)
    return {};
  const std::size_t equals = connStr.find('=', key);
  if (equals == std::string::npos) return {};
  const std::size_t end = connStr.find(';', key);
  return connStr.substr(equals + 1, end == std::string::npos ? std::string::npos : end - equals - 1);
}

// A database path that leaves the site: a share, a drive, or (here) an
// absolute path of this platform.
bool isOutsideSite(const std::string& dbPath) {
  return dbPath.starts_with("\\\\") || dbPath.find(':') != std::string::npos ||
         dbPath.starts_with("/");
}

}  // namespace

void Generation::PrepareOutputFolders() {
  for (const Ref<AGPControl>& ctrl : controls_.walk())
    if (text::toLower(ctrl->CtrlType) == "folder" && !ctrl->CtrlOFolder.empty() &&
        ctrl->CtrlOFolder != "_security")
      OutputPath(ctrl->CtrlOFolder, "", false);
}

std::int16_t Generation::CopyDatabase(bool check) {
  AGPVarsData& vars = AGPVars();
  AGPDatabase& db = *project_.DB();
  const std::string root = EnsureSep(siteRoot());
  for (const char* attribute : {"UploadPath", "AuditTrailPath"})
    if (const std::string folder = withoutLeadingTilde(project_.attrText(attribute)); !folder.empty())
      MakeFolder(root + folder);

  std::string dbPath = db.attrText("DBPath");
  std::string folder = root;
  if (dbPath.empty()) {
    folder = EnsureSep(root + vars.AppDataFolder);
  } else if (dbPath.starts_with("~")) {
    dbPath.erase(0, 1);
    if (dbPath.starts_with("/") || dbPath.starts_with("\\")) dbPath.erase(0, 1);
  }
  const std::string dbType = text::toUpper(db.attrText("DBType"));
  const std::string source = dbType == "ACCESS" || dbType == "SQLITE"
                                 ? db.attrText("DBPhyPath")
                                 : attachedDatabaseFile(db.attrText("DBConnstr"));
  if (source.find_first_of("\\/") == std::string::npos) return 0;
  const std::string name = files::fileNameOf(source);
  if (!dbPath.empty()) folder += EnsureSep(dbPath);
  const std::string target = folder + name;
  if (!files::fileExists(source) || isOutsideSite(dbPath)) return 0;

  bool skip = false;
  if (!files::folderExists(folder)) {
    if (dbPath.empty())
      MakeFolder(folder);
    else
      skip = !confirmDatabaseFolder(folder);
  }
  bool gen = true;
  if (files::folderExists(folder)) {
    if (absolutePath(source) == absolutePath(target)) return 0;
    if (files::fileExists(target)) {
      AGControlItem* item = projectItem("@db");
      if (check) {
        addProjectItem("@db", name, "Copy database");
        return 0;
      }
      gen = !item || item->ItemGen;
      if (gen) StepProgress();
    }
  }
  if (!gen || skip || check) return 0;
  std::string error;
  if (!files::copyFile(source, target, &error)) {
    vars.ProjErr = "Copying to file \"" + target + "\" failed! Error = " + error;
    return 1;
  }
  // A SQL Server data file travels with its log.
  if (text::toLower(source).ends_with(".mdf")) {
    const auto logOf = [](const std::string& p) { return p.substr(0, p.size() - 4) + "_log.ldf"; };
    if (files::fileExists(logOf(source))) files::copyFile(logOf(source), logOf(target));
  }
  return 0;
}

// Asks whether to make a missing database folder; false when the user
// declined (the database is then not copied), and a cancel stops the run.
bool Generation::confirmDatabaseFolder(const std::string& folder) {
  AGPVarsData& vars = AGPVars();
  const MessageAnswer answer = vars.host->ask(
      "Folder \"" + folder + "\" does not exist! Do you want to create it?", vars.ProductName,
      MessageButtons::YesNoCancel, MessageIcon::Question);
  if (answer == MessageAnswer::Cancel) CancelGeneration();
  if (answer == MessageAnswer::Yes) {
    MakeFolder(folder);
    return true;
  }
  vars.host->showMessage("Database Folder \"" + folder +
                             "\" not created! Database will not be copied. Make sure you set up "
                             "the correct database path for the " +
                             vars.PlatformName.toText() + " scripts to work correctly!",
                         vars.ProductName, MessageIcon::Warning);
  return false;
}

std::int16_t Generation::CopyControlFiles(bool check) {
  AGPVarsData& vars = AGPVars();
  std::int16_t count = 0;
  for (const Ref<AGPControl>& ctrl : controls_.walk()) {
    if (ctrl->CtrlType != "copy" || !template_.EvalCondition(ctrl->CtrlCond)) continue;
    if (const AGControlItem* item = projectItem(ctrl->CtrlID); item && !item->ItemGen) continue;
    vars.CurrentTemplateFolder = TemplateFolderOf(ctrl->CtrlExt);
    if (!ctrl->CtrlIFiles.empty()) {
      if (!copyControlFileItems(*ctrl, check, count)) return count;
    } else if (!ctrl->CtrlIFolder.empty()) {
      copyControlFolder(*ctrl, check, count);
    }
    StepProgress();
  }
  if (!check) copyDevelopmentServer();
  return count;
}

// File mode of a copy control. False when a source is missing, which ends
// all copying with ProjErr set.
bool Generation::copyControlFileItems(AGPControl& ctrl, bool check, std::int16_t& count) {
  AGPVarsData& vars = AGPVars();
  const std::string base = TemplateFilePath(vars.CurrentTemplateFolder, ctrl.CtrlIFolder);
  const std::vector<std::string> entries = text::split(ctrl.CtrlIFiles, ",");
  const bool intoFolder = !ctrl.CtrlOFolderID.empty() || !ctrl.CtrlOFolder.empty();
  for (const std::string& entry : entries) {
    const std::string source = TemplateFilePath(base, entry);
    std::string name = entry;
    if (intoFolder) name = files::fileNameOf(text::replaceAll(name, "/", "\\"));
    if (source.empty()) {
      vars.ProjErr = ProductMessage(": Source file does not exist - \"" + entry + "\"! Check if correct template.");
      return false;
    }
    if (entries.size() == 1 && !ctrl.CtrlOFile.empty()) name = OutputFileName(ctrl, "", "");
    const std::string target =
        OutputPath(JoinOutputFolder(ctrl.CtrlOFolderID, ctrl.CtrlOFolder), name, check);
    if (!ConfirmOverwrite(target, ctrl.CtrlOverwrite, check)) continue;
    if (check) {
      ++count;
      continue;
    }
    Status().DispStatus("Copying file " + entry + "...");
    const bool removed = files::removeFile(target);
    if (AGControlItem* item = projectItem(ctrl.CtrlID)) item->ItemDest = target;
    // An entry with a relative path keeps it in the site.
    files::createFolders(target.substr(0, target.find_last_of("\\/") + 1));
    std::string error = "the file cannot be deleted";
    if (!removed || !files::copyFile(source, target, &error))
      Status().DispStatus("Copying file " + entry + " failed: " + error);
  }
  return true;
}

// Folder mode: the folder keeps its name and place in the site unless the
// control names an output folder.
void Generation::copyControlFolder(AGPControl& ctrl, bool check, std::int16_t& count) {
  AGPVarsData& vars = AGPVars();
  std::string source = TemplateFilePath(vars.CurrentTemplateFolder, ctrl.CtrlIFolder);
  if (source.empty()) {
    vars.ProjErr = ProductMessage(": Source folder does not exist - \"" + ctrl.CtrlIFolder +
                                  "\"! Check if correct template.");
    return;
  }
  const bool intoFolder = !ctrl.CtrlOFolderID.empty() || !ctrl.CtrlOFolder.empty();
  std::string target = intoFolder
                           ? OutputPath(JoinOutputFolder(ctrl.CtrlOFolderID, ctrl.CtrlOFolder), "", check)
                           : OutputPath(ctrl.CtrlIFolder, "", check);
  source.pop_back();
  target.pop_back();
  if (!ConfirmFolderOverwrite(target, ctrl.CtrlOverwrite, check)) return;
  if (check) {
    ++count;
    return;
  }
  const std::string shown = ctrl.CtrlIFolder.substr(0, ctrl.CtrlIFolder.size() - 1);
  Status().DispStatus("Copying folder " + shown + "...");
  std::error_code ec;
  fs::copy(files::nativePath(source), files::nativePath(target),
           fs::copy_options::recursive | fs::copy_options::overwrite_existing, ec);
  if (ec) Status().DispStatus("Copying folder " + shown + " failed: " + ec.message());
}

// The development web server's library goes along when the installation
// has one; either way the site gets its bin folder.
void Generation::copyDevelopmentServer() {
  const std::string library = EnsureSep(files::programFolder()) + "cassini2\\Cassini.dll";
  const std::string target = OutputPath("~/bin", "Cassini.dll", false);
  if (files::fileExists(library) && !files::fileExists(target)) files::copyFile(library, target);
}

bool Generation::CopyFileItem(const std::string& id, const std::string& status,
                              const std::string& remark, const std::string& source,
                              const std::string& folder, bool check) {
  if (source.empty() || !files::fileExists(source)) return false;
  const std::string target = OutputPath(folder, files::fileNameOf(source), check);
  if (check) {
    addProjectItem(id, files::fileNameOf(source), remark);
    return files::fileExists(target);
  }
  const AGControlItem* item = projectItem(id);
  const bool gen = !item || item->ItemGen;
  if (gen) {
    Status().DispStatus(status);
    files::copyFile(source, target);
    StepProgress();
  }
  return gen;
}

void Generation::addProjectItem(const std::string& id, const std::string& fileName,
                                const std::string& remark) {
  AGControlItems& items = *project_.ControlItems();
  if (items.Add(id, fileName, true, remark)) items.Item(Variant(id))->ItemHasHeaderFooter = false;
}

}  // namespace bw
