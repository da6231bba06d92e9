#include "persistence/encoding.h"

#include "core/agp_vars.h"
#include "platform/locale.h"

namespace bw {

std::string GetSystemCharset() {
  AGPVarsData& vars = AGPVars();
  vars.CodePage = locale::systemCodePage();
  vars.SystemCharset = locale::charsetForCodePage(vars.CodePage);
  return vars.SystemCharset;
}

}  // namespace bw
