#include "template/duktape_proxy.h"

#include <cassert>
#include <optional>
#include <string>
#include <string_view>

#include "template/duktape_heap.h"
#include "template/duktape_native.h"
#include "template/duktape_values.h"

namespace bw::duk {
namespace {

// Hidden keys are invisible to scripts, and reading one through a proxy
// skips the handler and reads the target.
constexpr char kObjectKey[] = DUK_HIDDEN_SYMBOL("object");  // target: the Dispatch
constexpr char kProxyKey[] = DUK_HIDDEN_SYMBOL("proxy");    // target: its proxy
constexpr char kTargetKey[] = DUK_HIDDEN_SYMBOL("target");  // member function: the target
constexpr char kMemberKey[] = DUK_HIDDEN_SYMBOL("member");  // member function: the name
constexpr char kMemberFunctionPrefix[] = DUK_HIDDEN_SYMBOL("member:");  // target: cache

// The object of the target at `idx`.
Dispatch& targetObject(duk_context* ctx, duk_idx_t idx) {
  /* [ ... ] -> [ ... pointer ] -> [ ... ] */
  duk_get_prop_literal(ctx, idx, kObjectKey);
  auto* object = static_cast<Dispatch*>(duk_get_pointer(ctx, -1));
  duk_pop(ctx);
  assert(object && "not a proxy target");
  return *object;
}

// A property key as a member name; none for symbols.
std::optional<std::string_view> memberName(duk_context* ctx, duk_idx_t idx) {
  if (duk_is_number(ctx, idx)) duk_to_string(ctx, idx);  // obj[0] asks for a member "0"
  if (!duk_is_string(ctx, idx) || duk_is_symbol(ctx, idx)) return std::nullopt;
  duk_size_t length = 0;
  const char* data = duk_get_lstring(ctx, idx, &length);
  return std::string_view(data, length);
}

// The value of the default member when it can be read without arguments.
std::optional<Variant> defaultValue(Dispatch& object) {
  const Member* member = object.members().defaultMember();
  if (!member || member->minArgs > 0) return std::nullopt;
  return object.get(member->name);
}

// The object behind `this` of a stand-in member.
Dispatch& thisObject(duk_context* ctx) {
  /* [ ... ] -> [ ... this ] -> [ ... ] */
  duk_push_this(ctx);
  Dispatch* object = exposedAt(ctx, -1);
  duk_pop(ctx);
  if (!object) raiseBasicError(basic_error::kObjectDoesNotSupport);
  return *object;
}

// [ ] -> [ text ]
duk_ret_t objectToString(duk_context* ctx) {
  Dispatch& object = thisObject(ctx);
  const auto value = defaultValue(object);
  const std::string text =
      value ? value->toText() : "[object " + std::string(object.typeName()) + "]";
  duk_push_lstring(ctx, text.data(), text.size());
  return 1;
}

// [ ] -> [ value ]
duk_ret_t objectValueOf(duk_context* ctx) {
  if (auto value = defaultValue(thisObject(ctx)))
    pushValue(ctx, *value);
  else
    duk_push_this(ctx);
  return 1;
}

// [ args... ] -> [ args... result ]; `this` is ignored, the function knows
// its object and member.
duk_ret_t callMember(duk_context* ctx) {
  const std::vector<Variant> args = valuesAt(ctx, 0, duk_get_top(ctx));
  /* [ args... ] -> [ args... function target name ] */
  duk_push_current_function(ctx);
  duk_get_prop_literal(ctx, -1, kTargetKey);
  duk_get_prop_literal(ctx, -2, kMemberKey);
  duk_size_t length = 0;
  const char* name = duk_get_lstring(ctx, -1, &length);
  pushValue(ctx, targetObject(ctx, -2).get(std::string_view(name, length), args));
  return 1;
}

// The body of every target: calling the object calls its default member.
// [ args... ] -> [ args... result ]
duk_ret_t callDefaultMember(duk_context* ctx) {
  const std::vector<Variant> args = valuesAt(ctx, 0, duk_get_top(ctx));
  /* [ args... ] -> [ args... target ] */
  duk_push_current_function(ctx);
  Dispatch& object = targetObject(ctx, -1);
  const Member* member = object.members().defaultMember();
  if (!member) raiseBasicError(basic_error::kObjectDoesNotSupport);
  pushValue(ctx, object.get(member->name, args));
  return 1;
}

// [ ... target ... ] -> [ ... target ... function ]: the function that calls
// `member` of the target's object; made once per target and member.
void pushMemberFunction(duk_context* ctx, duk_idx_t target, const Member& member) {
  const std::string cacheKey = kMemberFunctionPrefix + member.name;
  /* [ ... ] -> [ ... function|undefined ] */
  if (duk_get_prop_lstring(ctx, target, cacheKey.data(), cacheKey.size())) return;
  duk_pop(ctx);
  /* [ ... ] -> [ ... function ] */
  duk_push_c_function(ctx, native<callMember>, DUK_VARARGS);
  duk_dup(ctx, target);
  duk_put_prop_literal(ctx, -2, kTargetKey);
  duk_push_lstring(ctx, member.name.data(), member.name.size());
  duk_put_prop_literal(ctx, -2, kMemberKey);
  /* [ ... function ] -> [ ... function function ] -> [ ... function ] */
  duk_dup_top(ctx);
  duk_put_prop_lstring(ctx, target, cacheKey.data(), cacheKey.size());
}

// A member that every script object has, asked of an object that lacks it:
// conversion to a primitive looks up valueOf and toString.
void pushStandInMember(duk_context* ctx, std::string_view name) {
  /* [ ... ] -> [ ... function ] */
  DukHeap& heap = DukHeap::of(ctx);
  if (name == "toString")
    heap.push(ctx, Slot::ToStringMember);
  else if (name == "valueOf")
    heap.push(ctx, Slot::ValueOfMember);
  else
    raiseBasicError(basic_error::kObjectDoesNotSupport);
}

// Trap `get`: [ target key receiver ] -> [ target key receiver value ]
duk_ret_t getMember(duk_context* ctx) {
  const auto name = memberName(ctx, 1);
  if (!name) {
    duk_push_undefined(ctx);
    return 1;
  }
  Dispatch& object = targetObject(ctx, 0);
  const Member* member = object.members().find(*name);
  if (!member)
    pushStandInMember(ctx, *name);
  else if (member->isCallable())
    pushMemberFunction(ctx, 0, *member);
  else
    pushValue(ctx, object.get(member->name));
  return 1;
}

// Trap `set`: [ target key value receiver ] -> [ target key value receiver done ]
duk_ret_t putMember(duk_context* ctx) {
  const auto name = memberName(ctx, 1);
  if (name) targetObject(ctx, 0).put(*name, valueAt(ctx, 2));
  duk_push_boolean(ctx, name.has_value());
  return 1;
}

// Finalizer of targets: [ target heapDestruct ] -> [ target heapDestruct ]
duk_ret_t finalizeTarget(duk_context* ctx) {
  /* [ target heapDestruct ] -> [ target heapDestruct pointer ] */
  duk_get_prop_literal(ctx, 0, kObjectKey);
  // The shared prototype carries the finalizer and is finalized too.
  if (auto* object = static_cast<Dispatch*>(duk_get_pointer(ctx, -1)))
    DukHeap::of(ctx).forget(object, duk_get_heapptr(ctx, 0));
  return 0;
}

}  // namespace

void installProxies(DukHeap& heap) {
  duk_context* ctx = heap.context();
  /* [ ] -> [ handler ] -> [ ] */
  duk_push_object(ctx);
  duk_push_c_function(ctx, native<getMember>, 3);
  duk_put_prop_literal(ctx, -2, "get");
  duk_push_c_function(ctx, native<putMember>, 4);
  duk_put_prop_literal(ctx, -2, "set");
  heap.keep(Slot::ProxyHandler);
  /* [ ] -> [ prototype ] -> [ ] */
  duk_push_object(ctx);
  duk_push_c_function(ctx, native<finalizeTarget>, 2);
  duk_set_finalizer(ctx, -2);
  heap.keep(Slot::TargetPrototype);

  duk_push_c_function(ctx, native<objectToString>, 0);
  heap.keep(Slot::ToStringMember);
  duk_push_c_function(ctx, native<objectValueOf>, 0);
  heap.keep(Slot::ValueOfMember);
}

void pushProxy(duk_context* ctx, Dispatch& object) {
  DukHeap& heap = DukHeap::of(ctx);
  if (void* target = heap.targetOf(&object)) {
    /* [ ... ] -> [ ... target ] -> [ ... proxy ] */
    duk_push_heapptr(ctx, target);
    duk_get_prop_literal(ctx, -1, kProxyKey);
    duk_remove(ctx, -2);
    return;
  }
  /* [ ... ] -> [ ... target ] */
  duk_push_c_function(ctx, native<callDefaultMember>, DUK_VARARGS);
  heap.push(ctx, Slot::TargetPrototype);
  duk_set_prototype(ctx, -2);
  duk_push_pointer(ctx, &object);
  duk_put_prop_literal(ctx, -2, kObjectKey);
  /* [ ... target ] -> [ ... target proxy ] */
  duk_dup_top(ctx);
  heap.push(ctx, Slot::ProxyHandler);
  duk_push_proxy(ctx, 0);
  /* [ ... target proxy ] -> [ ... proxy ] */
  duk_dup_top(ctx);
  duk_put_prop_literal(ctx, -3, kProxyKey);
  heap.expose(&object, duk_get_heapptr(ctx, -2));
  duk_remove(ctx, -2);
}

Dispatch* exposedAt(duk_context* ctx, duk_idx_t idx) {
  if (!duk_is_object(ctx, idx)) return nullptr;
  idx = duk_normalize_index(ctx, idx);
  /* [ ... ] -> [ ... pointer proxy ] */
  duk_get_prop_literal(ctx, idx, kObjectKey);
  duk_get_prop_literal(ctx, idx, kProxyKey);
  // An object that merely inherits from a proxy reads the same hidden
  // values; only the proxy itself stands for the object.
  auto* object =
      duk_strict_equals(ctx, -1, idx) ? static_cast<Dispatch*>(duk_get_pointer(ctx, -2)) : nullptr;
  duk_pop_2(ctx);
  return object;
}

}  // namespace bw::duk
