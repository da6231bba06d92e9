// DukHeap: one Duktape heap and the state the script adapter keeps beside it.
//
// A heap is created with a pointer to its DukHeap as user data, so every C
// function that scripts call finds its way back with DukHeap::of(ctx), and
// the executor's time-out check finds the deadline. Besides the heap, a
// DukHeap keeps:
//
//   - the values the adapter itself needs at hand (proxy handler, runtime
//     helpers, ...), in numbered slots of one array in the heap stash, and
//     their heap pointers for a quick push;
//
//   - the automation objects exposed to scripts. Each exposed object has one
//     proxy, so an object handed out twice is the same script value:
//
//       exposed_[dispatch] = {Ref, target}   target --hidden--> proxy
//                                            proxy  --target--> target
//
//     The target and its proxy refer to each other, so only mark-and-sweep
//     frees them; the target's finalizer then drops the entry and with it
//     the reference that kept the object alive. Until the finalizer runs the
//     target still exists, so the borrowed target pointer stays valid (and
//     pushing it again cancels the pending finalizer).
//
//   - the deadline of the running addCode or run.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>

#include "core/dispatch.h"
#include "duktape.h"

namespace bw::duk {

class ScriptValues;

// Values that the adapter keeps in the heap stash.
enum class Slot : std::uint8_t {
  ProxyHandler,     // the handler object of every automation proxy
  TargetPrototype,  // prototype of proxy targets; carries their finalizer
  ToStringMember,   // `toString` of automation objects that lack one
  ValueOfMember,    // `valueOf` of automation objects that lack one
  DescribeError,    // runtime helpers, see duktape_runtime.cpp
  DateParts,
  NewDate,
  ProcedureNames,
  ScriptValueTable,  // JS values held from C++, see ScriptValues
  Count
};

class DukHeap {
 public:
  // Creates the heap and installs the runtime that scripts see.
  DukHeap();
  ~DukHeap();
  DukHeap(const DukHeap&) = delete;
  DukHeap& operator=(const DukHeap&) = delete;

  // The DukHeap of the heap that `ctx` (any of its threads) belongs to.
  static DukHeap& of(duk_context* ctx);

  duk_context* context() const { return ctx_; }

  // [ ... value ] -> [ ... ]: keeps the value in `slot` for the heap's life.
  void keep(Slot slot);
  // [ ... ] -> [ ... value ]
  void push(duk_context* ctx, Slot slot) const;

  // Exposed automation objects (see above).
  void* targetOf(const Dispatch* object) const;
  void expose(Dispatch* object, void* target);
  void forget(const Dispatch* object, void* target);

  const std::shared_ptr<ScriptValues>& scriptValues() const { return scriptValues_; }

  // The deadline of the running addCode or run. A member that scripts call
  // may run code in the same engine; the inner call has its own deadline
  // and the outer one applies again afterwards (see DeadlineScope).
  struct Deadline {
    std::optional<std::chrono::steady_clock::time_point> at;
    bool reached = false;

    // None for `milliseconds` <= 0.
    static Deadline after(std::int32_t milliseconds);
  };
  Deadline exchangeDeadline(Deadline next) { return std::exchange(deadline_, next); }
  bool deadlineReached() const { return deadline_.reached; }
  // Asked by the executor every few thousand instructions.
  bool pastDeadline();

 private:
  struct Exposed {
    Ref<Dispatch> object;
    void* target;  // borrowed; valid until the target's finalizer forgets it
  };
  duk_context* ctx_ = nullptr;
  std::array<void*, static_cast<std::size_t>(Slot::Count)> slots_{};
  std::unordered_map<const Dispatch*, Exposed> exposed_;
  std::shared_ptr<ScriptValues> scriptValues_;
  Deadline deadline_;
};

// The deadline of one call, from construction to destruction; the adapter's
// own work after a time-out then runs without one.
class DeadlineScope {
 public:
  DeadlineScope(DukHeap& heap, std::int32_t milliseconds)
      : heap_(heap), outer_(heap.exchangeDeadline(DukHeap::Deadline::after(milliseconds))) {}
  ~DeadlineScope() { heap_.exchangeDeadline(outer_); }
  DeadlineScope(const DeadlineScope&) = delete;
  DeadlineScope& operator=(const DeadlineScope&) = delete;

  bool reached() const { return heap_.deadlineReached(); }

 private:
  DukHeap& heap_;
  DukHeap::Deadline outer_;
};

// Restores the value stack to its height at construction.
class StackScope {
 public:
  explicit StackScope(duk_context* ctx) : ctx_(ctx), top_(duk_get_top(ctx)) {}
  ~StackScope() { duk_set_top(ctx_, top_); }
  StackScope(const StackScope&) = delete;
  StackScope& operator=(const StackScope&) = delete;

 private:
  duk_context* ctx_;
  duk_idx_t top_;
};

}  // namespace bw::duk
