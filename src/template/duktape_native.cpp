#include "template/duktape_native.h"

#include <exception>
#include <string>

#include "core/automation_error.h"

namespace bw::duk {

bool runNative(duk_context* ctx, duk_c_function body, duk_ret_t& result) noexcept {
  std::string message;
  std::optional<std::int32_t> number;
  try {
    result = body(ctx);
    return true;
  } catch (const AutomationError& e) {
    message = e.description();
    number = e.number();
  } catch (const std::exception& e) {
    message = e.what();
  } catch (...) {
    message = "Unexpected error in native code";
  }
  pushError(ctx, message, number);
  return false;
}

void pushError(duk_context* ctx, std::string_view message, std::optional<std::int32_t> number) {
  /* [ ... ] -> [ ... error ] */
  // No C file name: Duktape then blames the innermost script line, which is
  // what a template author needs to see.
  duk_push_error_object_raw(ctx, DUK_ERR_ERROR, nullptr, 0, "%.*s",
                            static_cast<int>(message.size()), message.data());
  if (number) {
    duk_push_int(ctx, *number);
    duk_put_prop_literal(ctx, -2, "number");
  }
}

}  // namespace bw::duk
