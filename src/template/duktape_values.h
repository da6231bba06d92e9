// Conversions between Variants and script values.
//
//   Variant                              script value
//   Empty                             -> undefined
//   Null                              -> null
//   Boolean                           -> boolean
//   Integer, Long, Byte, Single, Double -> number
//   String                            -> string
//   Date                              -> Date with the same local date and time
//   Object                            -> the object's proxy (duktape_proxy.h); null for
//                                        no object; a ScriptObject -> the value it holds
//   Array                             -> array of the converted items
//
//   script value                         Variant
//   undefined                         -> Empty
//   null                              -> Null
//   boolean                           -> Boolean
//   number                            -> Long when an integer in 32-bit range, else Double
//   string                            -> String
//   Date                              -> Date, to the second (an invalid Date -> Null)
//   proxy of an automation object     -> Object, that very object
//   array                             -> Array of the converted items
//   any other object or function      -> Object, a ScriptObject holding the value
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "core/dispatch.h"
#include "duktape.h"

namespace bw::duk {

// [ ... ] -> [ ... value ]
void pushValue(duk_context* ctx, const Variant& value);

// The Variant of the script value at `idx`; the stack is unchanged.
Variant valueAt(duk_context* ctx, duk_idx_t idx);

// The Variants of `count` values from `first` on, for a call's arguments.
std::vector<Variant> valuesAt(duk_context* ctx, duk_idx_t first, duk_idx_t count);

// Script values that C++ holds through ScriptObjects, kept alive in a table
// in the heap stash under numeric ids. A ScriptObject may outlive its heap
// (a dictionary kept by C++ holds it); once the heap is gone, releasing only
// forgets.
class ScriptValues {
 public:
  ScriptValues(duk_context* ctx, void* table) : ctx_(ctx), table_(table) {}

  // Holds the value at `idx`, stack unchanged; gives its id.
  std::uint32_t hold(duk_context* ctx, duk_idx_t idx);
  // [ ... ] -> [ ... value ]
  void push(duk_context* ctx, std::uint32_t id) const;
  void release(std::uint32_t id);
  // Called as the heap goes.
  void detach() { ctx_ = nullptr; }

 private:
  duk_context* ctx_;  // the heap's main thread; null once the heap is gone
  void* table_;
  std::uint32_t nextId_ = 0;
};

// A script object or function as a Variant: it converts back to the very
// same value in the heap that made it, so a script can store an object in a
// dictionary and read it back. Its member table is empty: C++ can hold and
// hand back such a value but not call into it. In another heap it is an
// opaque automation object.
class ScriptObject : public Dispatch {
 public:
  ScriptObject(std::shared_ptr<ScriptValues> values, std::uint32_t id)
      : values_(std::move(values)), id_(id) {}
  ~ScriptObject() override { values_->release(id_); }

  bool belongsTo(const ScriptValues& values) const { return values_.get() == &values; }
  // [ ... ] -> [ ... value ]; the value must belong to the heap of `ctx`.
  void push(duk_context* ctx) const { values_->push(ctx, id_); }

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "ScriptObject"; }

 private:
  std::shared_ptr<ScriptValues> values_;
  std::uint32_t id_;
};

}  // namespace bw::duk
