// Intrusive reference counting for automation objects.
//
// Engine objects are shared the way automation objects are: by counted
// references, released when the last one goes. The count lives in the object
// so that a reference is one pointer wide, which keeps `Variant` at 16 bytes.
// The engine runs on one thread, so the count is a plain integer.
#pragma once

#include <cassert>
#include <cstdint>
#include <utility>

namespace bw {

class RefCounted {
 public:
  RefCounted() = default;
  RefCounted(const RefCounted&) : refs_(0) {}
  RefCounted& operator=(const RefCounted&) { return *this; }
  virtual ~RefCounted() = default;

  void addRef() const { ++refs_; }
  void release() const {
    assert(refs_ > 0 && "release without a reference");
    if (--refs_ == 0) delete this;
  }
  std::int32_t refCount() const { return refs_; }

 private:
  mutable std::int32_t refs_ = 0;
};

template <typename T>
class Ref {
 public:
  Ref() = default;
  Ref(std::nullptr_t) {}
  explicit Ref(T* p) : p_(p) {
    if (p_) p_->addRef();
  }
  Ref(const Ref& o) : Ref(o.p_) {}
  Ref(Ref&& o) noexcept : p_(std::exchange(o.p_, nullptr)) {}
  template <typename U>
  Ref(const Ref<U>& o) : Ref(static_cast<T*>(o.get())) {}
  template <typename U>
  Ref(Ref<U>&& o) noexcept : p_(o.detach()) {}
  ~Ref() {
    if (p_) p_->release();
  }

  Ref& operator=(Ref o) noexcept {
    std::swap(p_, o.p_);
    return *this;
  }

  T* get() const { return p_; }
  T* operator->() const {
    assert(p_ && "dereferencing an empty reference");
    return p_;
  }
  T& operator*() const {
    assert(p_ && "dereferencing an empty reference");
    return *p_;
  }
  explicit operator bool() const { return p_ != nullptr; }
  bool operator==(const Ref& o) const { return p_ == o.p_; }

  // Gives up ownership without releasing; for moves across types.
  T* detach() { return std::exchange(p_, nullptr); }

 private:
  T* p_ = nullptr;
};

template <typename T, typename... Args>
Ref<T> make(Args&&... args) {
  return Ref<T>(new T(std::forward<Args>(args)...));
}

// A further reference to an object that references already own, such as
// `this` inside a member. An object that no Ref owns would be deleted when
// this reference goes.
template <typename T>
Ref<T> refTo(T* p) {
  assert(p && p->refCount() > 0 && "refTo needs an object that a Ref already owns");
  return Ref<T>(p);
}

template <typename T, typename U>
Ref<T> refCast(const Ref<U>& r) {
  return Ref<T>(dynamic_cast<T*>(r.get()));
}

}  // namespace bw
