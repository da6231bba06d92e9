// The generation members of AGP: each call is one Generation.
#include "core/agp.h"
#include "generation/generation.h"

namespace bw {

std::int16_t AGP::GenCheck() { return Generation(*this).GenCheck(); }

void AGP::GenScript() { Generation(*this).GenScript(); }

}  // namespace bw
