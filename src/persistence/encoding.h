// Text encodings of files the engine reads and writes.
#pragma once

#include <string>

namespace bw {

// The charset name of the system's code page ("utf-8" in a UTF-8 locale);
// stores the code page in AGPVars().CodePage and the name in
// AGPVars().SystemCharset.
std::string GetSystemCharset();

}  // namespace bw
