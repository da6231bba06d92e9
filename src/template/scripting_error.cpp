#include "template/scripting_error.h"

#include "core/automation_error.h"

namespace bw {

void raiseScriptingError(std::int32_t number) {
  using namespace scripting_error;
  const char* description = nullptr;
  switch (number) {
    case kInvalidArgument:
      description = "Invalid procedure call or argument";
      break;
    case kFileNotFound:
      description = "File not found";
      break;
    case kBadFileMode:
      description = "Bad file mode";
      break;
    case kFileExists:
      description = "File already exists";
      break;
    case kInputPastEnd:
      description = "Input past end of file";
      break;
    case kPermissionDenied:
      description = "Permission denied";
      break;
    case kAccessError:
      description = "Path/File access error";
      break;
    case kPathNotFound:
      description = "Path not found";
      break;
    case kElementNotFound:
      description = "Element not found";
      break;
    default:
      raiseBasicError(number);
  }
  throw AutomationError(number, description);
}

}  // namespace bw
