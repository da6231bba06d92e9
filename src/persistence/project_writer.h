// Writing a project to its file.
#pragma once

#include <string>

#include "core/project.h"

namespace bw {

// Writes the project, its definition model and the stores as one XML text
// over `projFile`, after the old file became its newest backup. Leaves
// ProjErr "" on success and never throws.
void SaveProjectFile(Project& project, const std::string& projFile);

// Repairs TblSeq and FldSeq to 1..Count, telling the user of each repair.
bool CheckSequences(Project& project);

}  // namespace bw
