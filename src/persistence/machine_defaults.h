// The first-run copy of the shipped defaults into the user's settings.
#pragma once

namespace bw {

// Copies the machine hive's trees of advanced filters, settings and
// extensions into the user hive, value by value and with the type each read
// reports, overwriting what the user has. Called at construction when the
// user hive has no LanguageFolder, which marks a user's first run. Store
// failures are ignored: a later run simply tries again.
void CopyMachineDefaults();

}  // namespace bw
