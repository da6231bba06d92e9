// ProjectTemplate: the template that the open project generates with.
//
// It holds the controls of the loaded control file and the composition
// state, and does the steps of a generation run that stand between the
// control file and the script host: evaluating conditions against the
// project, composing a control into its script function, and adding the
// script files of `function` controls to the run's host.
#pragma once

#include <memory>
#include <string>

#include "core/project.h"
#include "template/composition.h"
#include "template/controls.h"

namespace bw {

class ProjectTemplate {
 public:
  explicit ProjectTemplate(Project& project);
  ~ProjectTemplate();
  ProjectTemplate(const ProjectTemplate&) = delete;
  ProjectTemplate& operator=(const ProjectTemplate&) = delete;

  // The controls of the loaded template.
  const Ref<AGPControls>& controls() const { return controls_; }

  // The composition state, in the project's script language.
  Composer& composer();

  // True when `cond` holds for the project, the current control and the
  // generation run's script host.
  bool EvalCondition(const std::string& cond);
  // The name of the control's composed function: ztEx_<cs|vb>_<id><tag>.
  std::string ControlFunctionId(const AGPControl& ctrl);
  // The template file of a control; several comma-separated files are
  // joined into the cache folder's ~tmp.tpl first.
  std::string ControlSourcePath(const std::string& ifiles, const std::string& ext);
  // Composes the control into one function and writes it to `sOutFile`.
  // Stops the run (GenerationError) on a missing template or a template
  // error.
  void ComposeControl(AGPControl& ctrl, const std::string& sOutFile);
  // Adds the files of the active `function` controls to the run's host; a
  // missing file leaves ProjErr set.
  void LoadTemplateScripts();

 private:
  Project& project_;
  Ref<AGPControls> controls_;
  std::unique_ptr<Composer> composer_;
};

}  // namespace bw
