// The files that describe the project itself to the generated site: the
// project config file and the default page of the security folder, the
// user's style sheet, logo and icon, and the language files.
#include <pugixml.hpp>

#include "core/agp_vars.h"
#include "core/control_items.h"
#include "core/conversions.h"
#include "core/project.h"
#include "core/registry.h"
#include "core/status.h"
#include "core/tables.h"
#include "generation/generation.h"
#include "generation/output_files.h"
#include "persistence/project_files.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/xml.h"
#include "template/output_file.h"

namespace bw {
namespace {

void appendLineBreak(pugi::xml_node parent) {
  parent.append_child(pugi::node_pcdata).set_value("\r\n");
}

// ProjID of the related project's file, when it has one.
std::string relatedProjectId(const std::string& path) {
  if (path.empty() || !files::fileExists(path)) return {};
  pugi::xml_document doc;
  if (!xml::loadFile(doc, path)) return {};
  const pugi::xml_node root = doc.document_element();
  if (text::toLower(root.name()) != "project") return {};
  return root.attribute("ProjID").value();
}

}  // namespace

std::int16_t Generation::GenerateProjectConfig(bool check) {
  const std::int64_t start = clock::tickCount();
  const std::string name = project_.attrText("ProjID") + ".xml";
  bool written = false;
  if (check) {
    addProjectItem("@config", name, "Create project config file");
  } else if (const AGControlItem* item = projectItem("@config"); !item || item->ItemGen) {
    const std::string folder = EnsureSep(siteRoot()) +
                               EnsureSep(project_.attrText("ProjVar") + FolderById("_security"));
    MakeFolder(folder);
    const bool csharp = project_.attrText("ProgramLanguage") == "C#";
    WriteOutputFile(folder + (csharp ? "default.cshtml" : "default.vbhtml"), " ", false);
    Status().DispStatus("Creating project config file " + name + "...");
    written = WriteProjectConfigXml(folder + name);
    LogGeneratedFile(folder + name, start, clock::tickCount());
    StepProgress();
  }
  copyStyleSheet(check, start);
  copyLogo(check);
  const bool icon = CopyFileItem("@favicon", "Copying favicon...", "Copy favicon",
                                 project_.attrText("FavIcon"), "", check);
  const bool languageFiles = createLanguageFiles(check);
  return written || icon || languageFiles ? 1 : 0;
}

bool Generation::WriteProjectConfigXml(const std::string& path) {
  if (path.empty()) return false;
  AGPVarsData& vars = AGPVars();
  const std::tm now = clock::localNow();
  pugi::xml_document doc;
  doc.append_child(pugi::node_declaration).append_attribute("version") = "1.0";
  pugi::xml_node root = doc.append_child("configuration");
  root.append_attribute("date") = clock::sortableDate(now).c_str();
  root.append_attribute("author") = "Tolvane Ltd.";
  appendLineBreak(root);

  pugi::xml_node projectNode = root.append_child("project");
  appendLineBreak(root);
  const auto set = [](pugi::xml_node node, const char* attribute, const std::string& value) {
    node.append_attribute(attribute) = value.c_str();
  };
  AGPDatabase& db = *project_.DB();
  set(projectNode, "id", project_.attrText("ProjID"));
  set(projectNode, "file", vars.ProjectFile);
  set(projectNode, "name", project_.attrText("ProjVar"));
  set(projectNode, "product", vars.ProductKey);
  set(projectNode, "version", vars.ProductVersion);
  set(projectNode, "datetime", clock::sortableDateTime(now));
  set(projectNode, "languagefolder", FolderById("_language"));
  set(projectNode, "userlevel", db.attrText("SecDefault"));
  if (const std::string related = relatedProjectId(project_.attrText("AppRelatedProject")); !related.empty())
    set(projectNode, "relatedid", related);
  appendLineBreak(projectNode);

  AGPTables& tables = *db.Tables();
  for (std::int32_t t = 0; t < tables.Count(); ++t) {
    AGPTable& table = tables.tableAt(t);
    if (!table.attrBool("TblLoaded")) continue;
    pugi::xml_node tableNode = projectNode.append_child("table");
    set(tableNode, "id", table.attrText("TblVar"));
    set(tableNode, "name", table.TblName());
    set(tableNode, "caption", table.TblCaption());
    set(tableNode, "userlevel", table.attrText("TblSecurity"));
    set(tableNode, "priv", table.attrBool("TblUserLevelPriv") ? "1" : "0");
    appendLineBreak(projectNode);
  }
  // The whole file is made again on every run: nothing of an older one stays.
  files::removeFile(path);
  WriteUtf8File(path, xml::outerXml(doc));
  return true;
}

void Generation::copyStyleSheet(bool check, std::int64_t startTick) {
  const std::string css = project_.attrText("CSS");
  if (css.empty()) return;
  const std::string target = OutputPath(FolderById("_css"), files::fileNameOf(css), check);
  if (css == target) return;  // the file is in place already
  if (check) {
    addProjectItem("@cssfile", target, "Copy user CSS");
    return;
  }
  const AGControlItem* item = projectItem("@cssfile");
  if ((!item || item->ItemGen)) {
    Status().DispStatus("Copying css...");
    if (files::fileExists(css)) {
      files::copyFile(css, target);
      LogGeneratedFile(target, startTick, clock::tickCount());
    }
  }
  StepProgress();
}

void Generation::copyLogo(bool check) {
  const std::string logo = project_.attrText("HeaderLogo");
  if (logo.empty() || !files::fileExists(logo)) return;
  const std::string name = files::fileNameOf(logo);
  if (check) {
    addProjectItem("@logo", name, "Copy logo");
    return;
  }
  const AGControlItem* item = projectItem("@logo");
  if (item && !item->ItemGen) return;
  const std::string target = OutputPath(FolderById("_images"), name, check);
  Status().DispStatus("Copying logo...");
  files::copyFile(logo, target);
  StepProgress();
}

// True when a language file's target exists (check mode) or a file was
// written.
bool Generation::createLanguageFiles(bool check) {
  AGPVarsData& vars = AGPVars();
  const bool multiLanguage = project_.attrBool("MultiLanguage");
  const std::string list = project_.attrText(multiLanguage ? "LanguageFiles" : "DefaultLanguageFile");
  if (list.empty()) return false;
  const std::string out = FolderById("_language");
  bool any = false;
  for (const std::string& raw : text::split(list, ",")) {
    const std::string entry = CleanString(Variant(raw));
    vars.LanguageFolder = GeneralSetting("LanguageFolder").toText();
    any |= CreateLanguageFile("@lang_" + entry, "Creating language file " + entry + "...",
                              "Create language file", files::joinPath(vars.LanguageFolder, entry),
                              out, entry, check, multiLanguage, false);
  }
  return any;
}

}  // namespace bw
