#include "template/activex.h"

#include "platform/text.h"
#include "template/dictionary.h"
#include "template/file_system_object.h"

namespace bw {

Ref<Dispatch> CreateActiveXObject(std::string_view progId) {
  if (text::iequals(progId, "Scripting.FileSystemObject")) return make<FileSystemObject>();
  if (text::iequals(progId, "Scripting.Dictionary")) return make<Dictionary>();
  return {};
}

}  // namespace bw
