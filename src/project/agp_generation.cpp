// The generation members of AGP: each call is one Generation.
#include "generation/generation.h"
#include "project/agp.h"

namespace bw {

std::int16_t AGP::GenCheck() { return Generation(*this, projectTemplate()).GenCheck(); }

void AGP::GenScript() { Generation(*this, projectTemplate()).GenScript(); }

}  // namespace bw
