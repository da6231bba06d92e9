// Reading a project file into a project.
#pragma once

#include <string>

#include "core/project.h"

namespace bw {

// Fills the project, its definition model and the stores of phrases, menus,
// master/detail definitions, custom scripts and extensions from `projFile`.
// Leaves ProjErr "" on success and never throws.
void LoadProjectFile(Project& project, const std::string& projFile);

// Gives the project, and a related project that has none, a ProjID.
void EnsureProjectIds(Project& project);

}  // namespace bw
