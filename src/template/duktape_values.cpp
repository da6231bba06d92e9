#include "template/duktape_values.h"

#include <cmath>
#include <limits>

#include "template/duktape_heap.h"
#include "template/duktape_proxy.h"
#include "template/duktape_runtime.h"

namespace bw::duk {
namespace {

// Arrays that contain themselves would otherwise recurse without end.
constexpr int kMaxArrayNesting = 64;
constexpr std::int32_t kOutOfStackSpace = 28;
// Value stack slots that converting one value takes at most (a Date's
// helper call); reserved for each level of nested arrays.
constexpr duk_idx_t kSlotsPerValue = 8;

Variant valueAt(duk_context* ctx, duk_idx_t idx, int depth);

void pushArray(duk_context* ctx, const std::vector<Variant>& items) {
  /* [ ... ] -> [ ... array ] */
  duk_require_stack(ctx, kSlotsPerValue);
  duk_push_array(ctx);
  for (std::size_t k = 0; k < items.size(); ++k) {
    pushValue(ctx, items[k]);
    duk_put_prop_index(ctx, -2, static_cast<duk_uarridx_t>(k));
  }
}

void pushObject(duk_context* ctx, Dispatch* object) {
  /* [ ... ] -> [ ... proxy|value|null ] */
  if (!object) {
    duk_push_null(ctx);
    return;
  }
  auto* held = dynamic_cast<ScriptObject*>(object);
  if (held && held->belongsTo(*DukHeap::of(ctx).scriptValues()))
    held->push(ctx);
  else
    pushProxy(ctx, *object);
}

Variant numberValue(double number) {
  // NaN fails both comparisons and stays a Double.
  const bool fitsLong = number >= std::numeric_limits<std::int32_t>::min() &&
                        number <= std::numeric_limits<std::int32_t>::max();
  if (fitsLong && std::trunc(number) == number) return Variant(static_cast<std::int32_t>(number));
  return Variant(number);
}

Variant stringValue(duk_context* ctx, duk_idx_t idx) {
  duk_size_t length = 0;
  const char* data = duk_get_lstring(ctx, idx, &length);
  return Variant(std::string_view(data, length));
}

Variant arrayValue(duk_context* ctx, duk_idx_t idx, int depth) {
  if (depth >= kMaxArrayNesting) throw AutomationError(kOutOfStackSpace, "Out of stack space");
  duk_require_stack(ctx, kSlotsPerValue);
  const auto length = static_cast<duk_uarridx_t>(duk_get_length(ctx, idx));
  std::vector<Variant> items;
  items.reserve(length);
  for (duk_uarridx_t k = 0; k < length; ++k) {
    /* [ ... ] -> [ ... item ] -> [ ... ] */
    duk_get_prop_index(ctx, idx, k);
    items.push_back(valueAt(ctx, -1, depth + 1));
    duk_pop(ctx);
  }
  return Variant::array(std::move(items));
}

Variant heldValue(duk_context* ctx, duk_idx_t idx) {
  const auto& values = DukHeap::of(ctx).scriptValues();
  return Variant(make<ScriptObject>(values, values->hold(ctx, idx)));
}

Variant objectValue(duk_context* ctx, duk_idx_t idx, int depth) {
  if (Dispatch* object = exposedAt(ctx, idx)) return Variant(refTo(object));
  if (duk_is_array(ctx, idx)) return arrayValue(ctx, idx, depth);
  if (auto date = dateAt(ctx, idx)) return *date;
  return heldValue(ctx, idx);
}

Variant valueAt(duk_context* ctx, duk_idx_t idx, int depth) {
  idx = duk_normalize_index(ctx, idx);
  switch (duk_get_type(ctx, idx)) {
    case DUK_TYPE_NONE:
    case DUK_TYPE_UNDEFINED:
      return Variant();
    case DUK_TYPE_NULL:
      return Variant::null();
    case DUK_TYPE_BOOLEAN:
      return Variant(static_cast<bool>(duk_get_boolean(ctx, idx)));
    case DUK_TYPE_NUMBER:
      return numberValue(duk_get_number(ctx, idx));
    case DUK_TYPE_STRING:
      return duk_is_symbol(ctx, idx) ? heldValue(ctx, idx) : stringValue(ctx, idx);
    case DUK_TYPE_OBJECT:
      return objectValue(ctx, idx, depth);
    default:  // buffers, pointers, lightweight functions
      return heldValue(ctx, idx);
  }
}

}  // namespace

void pushValue(duk_context* ctx, const Variant& value) {
  /* [ ... ] -> [ ... value ] */
  switch (value.type()) {
    case VarType::Empty:
      duk_push_undefined(ctx);
      break;
    case VarType::Null:
      duk_push_null(ctx);
      break;
    case VarType::Boolean:
      duk_push_boolean(ctx, value.boolean());
      break;
    case VarType::Integer:
    case VarType::Long:
    case VarType::Byte:
    case VarType::Single:
    case VarType::Double:
      duk_push_number(ctx, value.toDouble().value_or(0));
      break;
    case VarType::String:
      duk_push_lstring(ctx, value.string().data(), value.string().size());
      break;
    case VarType::Date:
      pushDate(ctx, value.dbl());
      break;
    case VarType::Object:
      pushObject(ctx, value.object());
      break;
    case VarType::Array:
      pushArray(ctx, value.items());
      break;
  }
}

Variant valueAt(duk_context* ctx, duk_idx_t idx) {
  return valueAt(ctx, idx, 0);
}

std::vector<Variant> valuesAt(duk_context* ctx, duk_idx_t first, duk_idx_t count) {
  std::vector<Variant> values;
  values.reserve(static_cast<std::size_t>(count));
  for (duk_idx_t k = 0; k < count; ++k) values.push_back(valueAt(ctx, first + k));
  return values;
}

// ---------------------------------------------------------------------------
// ScriptValues and ScriptObject

std::uint32_t ScriptValues::hold(duk_context* ctx, duk_idx_t idx) {
  idx = duk_normalize_index(ctx, idx);
  const std::uint32_t id = nextId_++;
  /* [ ... ] -> [ ... table value ] -> [ ... ] */
  duk_push_heapptr(ctx, table_);
  duk_dup(ctx, idx);
  duk_put_prop_index(ctx, -2, id);
  duk_pop(ctx);
  return id;
}

void ScriptValues::push(duk_context* ctx, std::uint32_t id) const {
  /* [ ... ] -> [ ... table ] -> [ ... value ] */
  duk_push_heapptr(ctx, table_);
  duk_get_prop_index(ctx, -1, id);
  duk_remove(ctx, -2);
}

void ScriptValues::release(std::uint32_t id) {
  if (!ctx_) return;
  /* [ ... ] -> [ ... table ] -> [ ... ] */
  duk_push_heapptr(ctx_, table_);
  duk_del_prop_index(ctx_, -1, id);
  duk_pop(ctx_);
}

const MemberTable& ScriptObject::members() const {
  static const MemberTable table{};
  return table;
}

}  // namespace bw::duk
