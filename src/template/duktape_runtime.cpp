#include "template/duktape_runtime.h"

#include "platform/clock.h"
#include "template/activex.h"
#include "template/duktape_heap.h"
#include "template/duktape_native.h"
#include "template/duktape_proxy.h"
#include "template/duktape_values.h"

namespace bw::duk {
namespace {

constexpr std::int32_t kCannotCreateObject = 429;

// Called once with the natives below; returns the runtime object whose
// members installRuntime() hands out. Built-ins are taken at start, so that
// scripts that replace them later do not change how the engine reads values.
constexpr std::string_view kPrelude = R"js(function (natives) {
  "use strict";
  var call = Function.prototype.call;
  function uncurry(method) { return call.bind(method); }
  var isArray = Array.isArray;
  var slice = uncurry(Array.prototype.slice);
  var ownKeys = Object.keys;
  var ownProperty = Object.getOwnPropertyDescriptor;
  var classOf = uncurry(Object.prototype.toString);
  var isNotANumber = isNaN;
  var NativeDate = Date;
  var getTime = uncurry(Date.prototype.getTime);
  var getFullYear = uncurry(Date.prototype.getFullYear);
  var getMonth = uncurry(Date.prototype.getMonth);
  var getDate = uncurry(Date.prototype.getDate);
  var getHours = uncurry(Date.prototype.getHours);
  var getMinutes = uncurry(Date.prototype.getMinutes);
  var getSeconds = uncurry(Date.prototype.getSeconds);
  var setFullYear = uncurry(Date.prototype.setFullYear);
  var setHours = uncurry(Date.prototype.setHours);
  var END = {};

  // A walk over the items of an array or of an automation collection.
  function walkOf(collection) {
    if (isArray(collection)) {
      var index = 0;
      return {
        next: function () { return index < collection.length ? collection[index++] : END; },
        reset: function () { index = 0; }
      };
    }
    var items = natives.newEnum(collection);
    if (items === null) throw new TypeError("Object is not a collection");
    return {
      next: function () { return natives.nextItem(items, END); },
      reset: function () { natives.resetEnum(items); }
    };
  }

  function Enumerator(collection) {
    if (!(this instanceof Enumerator)) return new Enumerator(collection);
    var walk = walkOf(collection);
    var current = walk.next();
    this.atEnd = function () { return current === END; };
    this.item = function () { return current === END ? undefined : current; };
    this.moveNext = function () { if (current !== END) current = walk.next(); };
    this.moveFirst = function () { walk.reset(); current = walk.next(); };
  }

  function VBArray(array) {
    if (!(this instanceof VBArray)) return new VBArray(array);
    if (!isArray(array)) throw new TypeError("VBArray expected");
    function checkDimension(dimension) {
      if (dimension !== undefined && dimension !== 1) throw new RangeError("Subscript out of range");
    }
    this.dimensions = function () { return 1; };
    this.lbound = function (dimension) { checkDimension(dimension); return 0; };
    this.ubound = function (dimension) { checkDimension(dimension); return array.length - 1; };
    this.getItem = function (index) {
      if (!(index >= 0 && index < array.length)) throw new RangeError("Subscript out of range");
      return array[index];
    };
    this.toArray = function () { return slice(array); };
  }

  Object.defineProperty(Error.prototype, "description", {
    get: function () { return this.message; },
    set: function (text) { this.message = text; },
    configurable: true
  });

  // [name, number or null, description, line]; never raises.
  function describeError(thrown) {
    try {
      if (thrown instanceof Error) {
        var number = thrown.number;
        return [String(thrown.name), typeof number === "number" ? number | 0 : null,
                String(thrown.description), thrown.lineNumber | 0];
      }
      return ["", null, String(thrown), 0];
    } catch (ignored) {
      return ["", null, "", 0];
    }
  }

  // [year, month, day, hours, minutes, seconds] in local time; [] for an
  // invalid Date, null for any other value.
  function dateParts(value) {
    if (classOf(value) !== "[object Date]") return null;
    if (isNotANumber(getTime(value))) return [];
    return [getFullYear(value), getMonth(value) + 1, getDate(value),
            getHours(value), getMinutes(value), getSeconds(value)];
  }

  // Years below 100 are taken as they stand.
  function newDate(year, month, day, hours, minutes, seconds) {
    var value = new NativeDate(0);
    setFullYear(value, year, month - 1, day);
    setHours(value, hours, minutes, seconds, 0);
    return value;
  }

  // Own enumerable properties that hold functions. Built-ins, the runtime
  // and bound objects are not enumerable; a variable that holds an
  // automation object (callable too) is no procedure.
  function procedureNames(global) {
    var names = [];
    var keys = ownKeys(global);
    for (var k = 0; k < keys.length; k++) {
      var property = ownProperty(global, keys[k]);
      var value = property && property.value;
      if (typeof value === "function" && !natives.isAutomationObject(value)) names.push(keys[k]);
    }
    return names;
  }

  return {
    Enumerator: Enumerator, VBArray: VBArray, describeError: describeError,
    dateParts: dateParts, newDate: newDate, procedureNames: procedureNames
  };
})js";

EnumVariant& enumeratorAt(duk_context* ctx, duk_idx_t idx) {
  auto* enumerator = dynamic_cast<EnumVariant*>(exposedAt(ctx, idx));
  if (!enumerator) raiseBasicError(basic_error::kTypeMismatch);
  return *enumerator;
}

// [ collection ] -> [ collection enumerator|null ]
duk_ret_t newEnum(duk_context* ctx) {
  Dispatch* collection = exposedAt(ctx, 0);
  Ref<EnumVariant> enumerator = collection ? collection->newEnum() : nullptr;
  if (enumerator)
    pushProxy(ctx, *enumerator);
  else
    duk_push_null(ctx);
  return 1;
}

// [ enumerator end ] -> [ enumerator end item|end ]
duk_ret_t nextItem(duk_context* ctx) {
  Variant item;
  if (enumeratorAt(ctx, 0).next(item))
    pushValue(ctx, item);
  else
    duk_dup(ctx, 1);
  return 1;
}

// [ enumerator ] -> [ enumerator ]
duk_ret_t resetEnum(duk_context* ctx) {
  enumeratorAt(ctx, 0).reset();
  return 0;
}

// [ value ] -> [ value isAutomationObject ]
duk_ret_t isAutomationObject(duk_context* ctx) {
  duk_push_boolean(ctx, exposedAt(ctx, 0) != nullptr);
  return 1;
}

// new ActiveXObject(progId): [ progId ] -> [ progId object ]
duk_ret_t createActiveXObject(duk_context* ctx) {
  duk_size_t length = 0;
  const char* progId = duk_is_string(ctx, 0) ? duk_get_lstring(ctx, 0, &length) : "";
  Ref<Dispatch> object = CreateActiveXObject(std::string_view(progId, length));
  if (!object) throw AutomationError(kCannotCreateObject, "Automation server can't create object");
  pushProxy(ctx, *object);
  return 1;
}

void pushNatives(duk_context* ctx) {
  static constexpr duk_function_list_entry natives[] = {
      {"newEnum", native<newEnum>, 1},
      {"nextItem", native<nextItem>, 2},
      {"resetEnum", native<resetEnum>, 1},
      {"isAutomationObject", native<isAutomationObject>, 1},
      {nullptr, nullptr, 0},
  };
  /* [ ... ] -> [ ... natives ] */
  duk_push_object(ctx);
  duk_put_function_list(ctx, -1, natives);
}

// [ ... runtime ] -> [ ... runtime ]
void keepMember(DukHeap& heap, const char* name, Slot slot) {
  duk_get_prop_string(heap.context(), -1, name);
  heap.keep(slot);
}

// [ ... runtime ] -> [ ... runtime ]
void defineMemberAsGlobal(duk_context* ctx, const char* name) {
  duk_get_prop_string(ctx, -1, name);
  defineGlobal(ctx, name);
}

std::string stringItem(duk_context* ctx, duk_idx_t array, duk_uarridx_t index) {
  /* [ ... ] -> [ ... item ] -> [ ... ] */
  duk_get_prop_index(ctx, array, index);
  duk_size_t length = 0;
  const char* data = duk_get_lstring_default(ctx, -1, &length, "", 0);
  std::string item(data, length);
  duk_pop(ctx);
  return item;
}

std::optional<double> numberItem(duk_context* ctx, duk_idx_t array, duk_uarridx_t index) {
  /* [ ... ] -> [ ... item ] -> [ ... ] */
  duk_get_prop_index(ctx, array, index);
  std::optional<double> item;
  if (duk_is_number(ctx, -1)) item = duk_get_number(ctx, -1);
  duk_pop(ctx);
  return item;
}

}  // namespace

void installRuntime(DukHeap& heap) {
  duk_context* ctx = heap.context();
  /* [ ] -> [ prelude ]; no file name, see the header */
  duk_push_undefined(ctx);
  duk_compile_lstring_filename(ctx, DUK_COMPILE_FUNCTION, kPrelude.data(), kPrelude.size());
  /* [ prelude ] -> [ prelude natives ] -> [ runtime ] */
  pushNatives(ctx);
  duk_call(ctx, 1);

  defineMemberAsGlobal(ctx, "Enumerator");
  defineMemberAsGlobal(ctx, "VBArray");
  keepMember(heap, "describeError", Slot::DescribeError);
  keepMember(heap, "dateParts", Slot::DateParts);
  keepMember(heap, "newDate", Slot::NewDate);
  keepMember(heap, "procedureNames", Slot::ProcedureNames);
  duk_pop(ctx);

  /* [ ] -> [ ActiveXObject ] -> [ ] */
  duk_push_c_function(ctx, native<createActiveXObject>, 1);
  defineGlobal(ctx, "ActiveXObject");
}

void defineGlobal(duk_context* ctx, std::string_view name) {
  /* [ ... value ] -> [ ... global name value ] -> [ ... ] */
  duk_push_global_object(ctx);
  duk_push_lstring(ctx, name.data(), name.size());
  duk_pull(ctx, -3);
  duk_def_prop(ctx, -3,
               DUK_DEFPROP_HAVE_VALUE | DUK_DEFPROP_SET_WRITABLE | DUK_DEFPROP_SET_CONFIGURABLE |
                   DUK_DEFPROP_CLEAR_ENUMERABLE);
  duk_pop(ctx);
}

void pushDate(duk_context* ctx, double oaDate) {
  const clock::DateParts parts = clock::splitDate(oaDate);
  /* [ ... ] -> [ ... newDate y m d h min s ] -> [ ... date ] */
  DukHeap::of(ctx).push(ctx, Slot::NewDate);
  for (int part : {parts.year, parts.month, parts.day, parts.hour, parts.minute, parts.second})
    duk_push_int(ctx, part);
  // Only a deadline can strike inside; the script then stops, and the value
  // no longer matters.
  if (duk_pcall(ctx, 6) != DUK_EXEC_SUCCESS) {
    duk_pop(ctx);
    duk_push_undefined(ctx);
  }
}

std::optional<Variant> dateAt(duk_context* ctx, duk_idx_t idx) {
  idx = duk_normalize_index(ctx, idx);
  StackScope scope(ctx);
  /* [ ... ] -> [ ... dateParts value ] -> [ ... parts|null ] */
  DukHeap::of(ctx).push(ctx, Slot::DateParts);
  duk_dup(ctx, idx);
  if (duk_pcall(ctx, 1) != DUK_EXEC_SUCCESS || !duk_is_array(ctx, -1)) return std::nullopt;
  if (duk_get_length(ctx, -1) == 0) return Variant::null();
  int part[6];
  for (duk_uarridx_t k = 0; k < 6; ++k)
    part[k] = static_cast<int>(numberItem(ctx, -1, k).value_or(0));
  return Variant::date(clock::makeDate({part[0], part[1], part[2], part[3], part[4], part[5]}));
}

ThrownValue describeThrown(duk_context* ctx, duk_idx_t idx) {
  idx = duk_normalize_index(ctx, idx);
  StackScope scope(ctx);
  /* [ ... ] -> [ ... describeError value ] -> [ ... description ] */
  DukHeap::of(ctx).push(ctx, Slot::DescribeError);
  duk_dup(ctx, idx);
  ThrownValue thrown;
  if (duk_pcall(ctx, 1) != DUK_EXEC_SUCCESS || !duk_is_array(ctx, -1)) return thrown;
  thrown.name = stringItem(ctx, -1, 0);
  if (auto number = numberItem(ctx, -1, 1)) thrown.number = static_cast<std::int32_t>(*number);
  thrown.description = stringItem(ctx, -1, 2);
  thrown.line = static_cast<std::int32_t>(numberItem(ctx, -1, 3).value_or(0));
  return thrown;
}

std::vector<std::string> procedureNames(duk_context* ctx) {
  StackScope scope(ctx);
  /* [ ... ] -> [ ... procedureNames global ] -> [ ... names ] */
  DukHeap::of(ctx).push(ctx, Slot::ProcedureNames);
  duk_push_global_object(ctx);
  std::vector<std::string> names;
  if (duk_pcall(ctx, 1) != DUK_EXEC_SUCCESS) return names;
  const auto count = static_cast<duk_uarridx_t>(duk_get_length(ctx, -1));
  for (duk_uarridx_t k = 0; k < count; ++k) names.push_back(stringItem(ctx, -1, k));
  return names;
}

}  // namespace bw::duk
