// The engine's objects in a script host, by the names that templates use.
#pragma once

#include "core/project.h"
#include "template/project_template.h"
#include "template/script_host.h"

namespace bw {

// Binds PROJ, DB, CONTROLS, LANGUAGE, MASTERDETAILS, CUSTOMSCRIPTS, EXTS and
// MENULIST into `host` and loads its system and user code, as AGScript's
// Initialize does. A generation run and ParseScript bind the same objects,
// so that a template behaves the same in both.
void BindProjectObjects(AGScript& host, Project& project, ProjectTemplate& projectTemplate);

}  // namespace bw
