// Owning holders for the runtime's reference-counted and allocated types, so that a failure
// anywhere below the boundary releases what was made.
#ifndef HALVORINE_PLATFORM_COMPTR_H
#define HALVORINE_PLATFORM_COMPTR_H

#include <halvorine/com.h>

#include <utility>

namespace halvorine {

// Holds one reference to an interface.
template <class T>
class ComPtr {
 public:
  ComPtr() = default;
  // Takes over a reference that the caller already holds.
  static ComPtr Adopt(T* pointer) {
    ComPtr held;
    held.pointer_ = pointer;
    return held;
  }
  // Adds a reference of its own.
  static ComPtr Share(T* pointer) {
    if (pointer != nullptr) pointer->AddRef();
    return Adopt(pointer);
  }
  ComPtr(ComPtr&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
  ComPtr& operator=(ComPtr&& other) noexcept {
    std::swap(pointer_, other.pointer_);
    return *this;
  }
  ComPtr(const ComPtr&) = delete;
  ComPtr& operator=(const ComPtr&) = delete;
  ~ComPtr() {
    if (pointer_ != nullptr) pointer_->Release();
  }

  T* get() const { return pointer_; }
  T* operator->() const { return pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }
  // For out arguments: the former reference is released first.
  T** Receive() {
    *this = ComPtr();
    return &pointer_;
  }
  // Hands the reference to the caller.
  T* Detach() { return std::exchange(pointer_, nullptr); }

 private:
  T* pointer_ = nullptr;
};

}  // namespace halvorine

#endif  // HALVORINE_PLATFORM_COMPTR_H
