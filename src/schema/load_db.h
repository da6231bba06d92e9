// The doors from a project to its database's schema. Both choose the road by
// the database type word, keep the project consistent when a load fails (no
// half-made database stays), and leave the outcome in ProjErr ("" is
// success).
#pragma once

#include <string>

#include "core/project.h"

namespace bw {

// Reads a whole schema into a new current database of the project.
void LoadDB(Project& project, const Variant& sDbName, const Variant& sDbType,
            const Variant& sPath, const Variant& sPhyPath, const Variant& bDBUseServerMapPath,
            const Variant& sUID, const Variant& sPwd, const Variant& sConnStr,
            const Variant& sSchema);

// Reads one table again, or first, when the database was loaded lazily.
void LoadTable(Project& project, const std::string& sTableName);

}  // namespace bw
