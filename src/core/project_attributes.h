// The registered attributes of the project, shared by every project bag.
#pragma once

#include "core/properties.h"

namespace bw {

const Ref<const PropertyLayout>& ProjectLayout();

}  // namespace bw
