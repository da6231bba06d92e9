#include "template/project_template.h"

#include <string>
#include <vector>

#include "core/agp_vars.h"
#include "core/databases.h"
#include "core/generation_error.h"
#include "core/registry.h"
#include "core/status.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/text.h"
#include "template/conditions.h"
#include "template/output_file.h"
#include "template/parser.h"
#include "template/script_host.h"
#include "template/template_folders.h"

namespace bw {
namespace {

std::vector<std::string> splitAt(std::string_view text, char separator) {
  std::vector<std::string> parts;
  std::size_t start = 0;
  for (std::size_t at; (at = text.find(separator, start)) != std::string_view::npos; start = at + 1)
    parts.emplace_back(text.substr(start, at - start));
  parts.emplace_back(text.substr(start));
  return parts;
}

// "<!--##=Name(a,b,c)##-->" for "a/b/c"; "" for fewer than three parts.
std::string callMarkOf(std::string_view function, std::string_view value) {
  const std::vector<std::string> parts = splitAt(value, '/');
  if (parts.size() < 3) return {};
  return "<!--##=" + std::string(function) + "(" + parts[0] + "," + parts[1] + "," + parts[2] +
         ")##-->" + std::string(text::kCrLf);
}

// Replaces ProjErr by "<path>: <ProjErr>" after writing what was composed,
// with the message, for the user to inspect; then stops the run.
[[noreturn]] void failComposition(const std::string& path, const std::string& sOutFile,
                                  const std::string& composed) {
  AGPVarsData& vars = AGPVars();
  AGScript::ScriptWriteFile(sOutFile, composed + vars.ProjErr + std::string(text::kCrLf));
  vars.ProjErr = path + ": " + vars.ProjErr;
  RaiseGenerationError();
}

// The template text of one session: a string, or an array of pieces when it
// comes from a template file.
Variant sessionText(const AGPControl& ctrl, const AGPSession& session, AGParser& parser) {
  const std::string& type = session.SessType;
  if (type == "key") {
    if (!session.SessIFile.empty()) return parser.GetSession(session.SessIFile, session.SessValue);
    AGPVars().CurrentTemplateFolder = TemplateFolderOf(ctrl.CtrlExt);
    return parser.GetSession(ctrl.CtrlIFiles, session.SessValue);
  }
  const std::string crlf(text::kCrLf);
  if (type == "control_start") return Variant("<!--##=Control_Start##-->" + crlf);
  if (type == "class_start") return Variant("<!--##=Class_Start##-->" + crlf);
  if (type == "class_end") return Variant("<!--##=Class_End##-->" + crlf);
  if (type == "register") return Variant(callMarkOf("Register", session.SessValue));
  if (type == "include") return Variant(callMarkOf("Include", session.SessValue));
  return Variant(std::string());
}

void composeSessionText(Composer& compose, const Variant& text) {
  if (!text.isArray()) {
    compose.composeBlocks(text.toText());
    return;
  }
  for (const Variant& piece : text.items()) {
    compose.composeBlocks(piece.toText());
    if (!AGPVars().ProjErr.empty()) return;
  }
}

// "// *** Start Session header (key, 11/23/2026 10:15:00 AM)"
std::string sessionMarkLine(const Composer& compose, std::string_view edge,
                            const AGPSession& session) {
  return std::string(compose.tokens().commentMark) + " *** " + std::string(edge) + " Session " +
         session.SessValue + " (" + session.SessType + ", " + formatDate(clock::now()) + ")";
}

void appendSessionTime(Composer& compose, const std::string& name) {
  if (compose.tokens().jscript) {
    compose.appendBodyLine("var ztStopTime = new Date();");
    compose.appendBodyLine("ztSB.Append(\"//*** " + name +
                           ": \" + (ztStopTime.getTime()-ztStartTime.getTime()) + \" ms\");");
  } else {
    compose.appendBodyLine("ztStopTime = Timer");
    compose.appendBodyLine("ztSB.Append(\"*** " + name + ": \" & (ztStopTime-ztStartTime) & \" ms\")");
  }
}

}  // namespace

ProjectTemplate::ProjectTemplate(Project& project)
    : project_(project), controls_(make<AGPControls>()) {}

ProjectTemplate::~ProjectTemplate() = default;

Composer& ProjectTemplate::composer() {
  if (!composer_ || composer_->language() != AGPVars().ScriptLanguage)
    composer_ = std::make_unique<Composer>(AGPVars().ScriptLanguage);
  return *composer_;
}

bool ProjectTemplate::EvalCondition(const std::string& cond) {
  AGScript* script = GenerationScript();
  ConditionContext context{
      .project = *project_.Properties(),
      .getV = [this](const std::string& name) { return project_.GetV(name); },
      .controls = controls_.get(),
  };
  // The generation run makes a table current, and a field by moving the
  // table's field cursor to it.
  const Ref<AGPDatabase> db = project_.DB();
  if (db) context.database = &db->bag();
  if (const Ref<AGPTable>& table = project_.currentTable()) {
    context.table = &table->bag();
    AGPFields& fields = *table->Fields();
    if (DefinitionObject* field = fields.find(fields.curName)) context.field = &field->bag();
  }
  if (script)
    context.runModule = [script](const std::string& module) {
      return script->RunModule(Variant(module));
    };
  return bw::EvalCondition(cond, context);
}

std::string ProjectTemplate::ControlFunctionId(const AGPControl& ctrl) {
  std::string id = "ztEx_";
  id += project_.ProgramLanguage() == "C#" ? "cs" : "vb";
  id += "_" + ctrl.CtrlID + ctrl.CtrlTagExt;
  for (char& c : id)
    if (c == '.') c = '_';
  return id;
}

std::string ProjectTemplate::ControlSourcePath(const std::string& ifiles, const std::string& ext) {
  AGPVarsData& vars = AGPVars();
  vars.CurrentTemplateFolder = TemplateFolderOf(ext);
  if (ifiles.find(',') == std::string::npos)
    return files::joinPath(vars.CurrentTemplateFolder, ifiles);
  // Several files compose as one: their texts joined into a scratch file.
  const std::string path = files::joinPath(vars.CacheFolder, "~tmp.tpl");
  std::string joined;
  for (const std::string& item : splitAt(ifiles, ',')) {
    const std::string file = TemplateFilePath(vars.CurrentTemplateFolder, item);
    if (!file.empty() && files::fileExists(file)) joined += files::readTextFile(file);
  }
  AGScript::ScriptWriteFile(path, joined);
  return path;
}

void ProjectTemplate::ComposeControl(AGPControl& ctrl, const std::string& sOutFile) {
  AGPVarsData& vars = AGPVars();
  const bool showSession = GeneralFlag("ShowSession");
  const bool showTime = GeneralFlag("ShowSessionTime");
  AGParser parser;

  const std::string path = ControlSourcePath(ctrl.CtrlIFiles, ctrl.CtrlExt);
  if (!files::fileExists(path)) {
    vars.ProjErr = "Error in merging " + ctrl.CtrlIFiles + ". Generation aborted.";
    RaiseGenerationError();
  }
  const std::string whole = files::readTextFile(path);

  Composer& compose = composer();
  compose.reset();
  const Ref<AGPSessions> sessions = ctrl.Sessions();
  if (sessions->Count() == 0) {
    Status().Refresh();
    compose.composeBlocks(whole);
    if (!vars.ProjErr.empty()) failComposition(path, sOutFile, whole);
  }
  for (const Ref<AGPSession>& session : sessions->items()) {
    Status().Refresh();
    if (!EvalCondition(session->SessCond)) continue;
    const Variant text = sessionText(ctrl, *session, parser);
    if (showSession) compose.appendBodyLine(sessionMarkLine(compose, "Start", *session));
    Status().Refresh();
    composeSessionText(compose, text);
    if (showSession) compose.appendBodyLine(sessionMarkLine(compose, "End", *session));
    if (showTime) appendSessionTime(compose, session->SessValue);
    if (!vars.ProjErr.empty()) failComposition(path, sOutFile, compose.bodyCode());
    StepProgress();
  }
  WriteOutputFile(sOutFile,
                  compose.functionText(ControlFunctionId(ctrl), FunctionForm::Control, showTime));
}

void ProjectTemplate::LoadTemplateScripts() {
  AGPVarsData& vars = AGPVars();
  AGScript* script = GenerationScript();
  for (std::int32_t k = 1; k <= controls_->Count(); ++k) {
    const Ref<AGPControl> ctrl = controls_->Item(Variant(k));
    if (ctrl->CtrlType != "function" || !EvalCondition(ctrl->CtrlCond)) continue;
    vars.CurrentTemplateFolder = TemplateFolderOf(ctrl->CtrlExt);
    std::string file;
    if (!ctrl->CtrlIFiles.empty()) file = TemplateFilePath(vars.CurrentTemplateFolder, ctrl->CtrlIFiles);
    if (file.empty()) {
      vars.ProjErr = vars.ProductName + ": Script file does not exist - \"" + ctrl->CtrlIFiles +
                     "\"! Check if correct template.";
      return;
    }
    if (script) script->AddTemplateScript(file);
    if (!vars.ProjErr.empty()) return;
  }
}

}  // namespace bw
