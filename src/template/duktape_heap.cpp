#include "template/duktape_heap.h"

#include <cstdio>
#include <cstdlib>
#include <new>

#include "template/duktape_proxy.h"
#include "template/duktape_runtime.h"
#include "template/duktape_values.h"

namespace bw::duk {
namespace {

constexpr const char* kSlotsKey = "bw";

// Reached only for an error outside every protected call, which is a fault
// of this adapter; Duktape does not allow the process to go on.
[[noreturn]] void onFatal(void* /*udata*/, const char* message) {
  std::fprintf(stderr, "brindlework: fatal script engine error: %s\n", message ? message : "");
  std::abort();
}

}  // namespace

DukHeap::DukHeap() {
  ctx_ = duk_create_heap(nullptr, nullptr, nullptr, this, onFatal);
  if (!ctx_) throw std::bad_alloc();
  /* [ ] -> [ ] with stash.bw = [] */
  duk_push_heap_stash(ctx_);
  duk_push_array(ctx_);
  duk_put_prop_string(ctx_, -2, kSlotsKey);
  duk_pop(ctx_);

  duk_push_object(ctx_);
  scriptValues_ = std::make_shared<ScriptValues>(ctx_, duk_get_heapptr(ctx_, -1));
  keep(Slot::ScriptValueTable);
  installProxies(*this);
  installRuntime(*this);
}

DukHeap::~DukHeap() {
  // Script objects that C++ still holds must not reach into a heap that is
  // going; the finalizers of exposed objects run during the destruction, and
  // whatever they leave is released with exposed_.
  scriptValues_->detach();
  duk_destroy_heap(ctx_);
}

DukHeap& DukHeap::of(duk_context* ctx) {
  duk_memory_functions functions;
  duk_get_memory_functions(ctx, &functions);
  return *static_cast<DukHeap*>(functions.udata);
}

void DukHeap::keep(Slot slot) {
  const auto index = static_cast<duk_uarridx_t>(slot);
  slots_[index] = duk_get_heapptr(ctx_, -1);
  /* [ ... value ] -> [ ... stash slots value ] */
  duk_push_heap_stash(ctx_);
  duk_get_prop_string(ctx_, -1, kSlotsKey);
  duk_pull(ctx_, -3);
  /* [ ... stash slots value ] -> [ ... ] */
  duk_put_prop_index(ctx_, -2, index);
  duk_pop_2(ctx_);
}

void DukHeap::push(duk_context* ctx, Slot slot) const {
  /* [ ... ] -> [ ... value ] */
  duk_push_heapptr(ctx, slots_[static_cast<std::size_t>(slot)]);
}

void* DukHeap::targetOf(const Dispatch* object) const {
  auto it = exposed_.find(object);
  return it == exposed_.end() ? nullptr : it->second.target;
}

void DukHeap::expose(Dispatch* object, void* target) {
  exposed_.insert_or_assign(object, Exposed{refTo(object), target});
}

void DukHeap::forget(const Dispatch* object, void* target) {
  auto it = exposed_.find(object);
  if (it == exposed_.end() || it->second.target != target) return;
  // The object may go with its last reference, and its destructor may
  // release script values; the map is consistent again before that.
  Ref<Dispatch> released = std::move(it->second.object);
  exposed_.erase(it);
}

DukHeap::Deadline DukHeap::Deadline::after(std::int32_t milliseconds) {
  if (milliseconds <= 0) return {};
  return {std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds)};
}

bool DukHeap::pastDeadline() {
  if (!deadline_.at || std::chrono::steady_clock::now() < *deadline_.at) return false;
  deadline_.reached = true;
  return true;
}

}  // namespace bw::duk

extern "C" duk_bool_t bw_duk_exec_timeout_check(void* udata) {
  return udata != nullptr && static_cast<bw::duk::DukHeap*>(udata)->pastDeadline();
}
