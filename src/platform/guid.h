// New GUID texts in registry format: "{XXXXXXXX-XXXX-4XXX-YXXX-XXXXXXXXXXXX}".
#pragma once

#include <string>

namespace bw {

// A random (version 4) GUID in upper case with braces, 38 characters;
// "" if the system's random source cannot be read.
std::string newGuid();

}  // namespace bw
