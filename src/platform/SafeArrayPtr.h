#ifndef HALVORINE_PLATFORM_SAFEARRAYPTR_H
#define HALVORINE_PLATFORM_SAFEARRAYPTR_H

#include <halvorine/com.h>

#include <utility>

namespace halvorine {

// Owns one SAFEARRAY, which may be null; destroying it releases the elements' references.
class SafeArrayPtr {
 public:
  SafeArrayPtr() = default;
  explicit SafeArrayPtr(SAFEARRAY* array) : array_(array) {}
  SafeArrayPtr(SafeArrayPtr&& other) noexcept : array_(std::exchange(other.array_, nullptr)) {}
  SafeArrayPtr& operator=(SafeArrayPtr&& other) noexcept {
    std::swap(array_, other.array_);
    return *this;
  }
  SafeArrayPtr(const SafeArrayPtr&) = delete;
  SafeArrayPtr& operator=(const SafeArrayPtr&) = delete;
  ~SafeArrayPtr() { SafeArrayDestroy(array_); }

  SAFEARRAY* get() const { return array_; }
  SAFEARRAY** Receive() {
    *this = SafeArrayPtr();
    return &array_;
  }
  SAFEARRAY* Detach() { return std::exchange(array_, nullptr); }

 private:
  SAFEARRAY* array_ = nullptr;
};

}  // namespace halvorine

#endif  // HALVORINE_PLATFORM_SAFEARRAYPTR_H
