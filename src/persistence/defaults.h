// Project defaults in the settings store.
#pragma once

#include "core/project.h"

namespace bw {

// Sets the project's stored attributes from the Project section of the user
// hive and reads the general settings the project keeps (BackupFile,
// UserCode, UnloadThresholdCount, ...); the security and generation
// attributes get fixed values whatever the store says.
void LoadDefault(Project& project);
// Writes the stored attributes of the project and its database, and the
// general settings the project keeps, back to the user hive.
void SaveDefault(Project& project);

}  // namespace bw
