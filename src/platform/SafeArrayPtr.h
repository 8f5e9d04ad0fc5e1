#ifndef HALVORINE_PLATFORM_SAFEARRAYPTR_H
#define HALVORINE_PLATFORM_SAFEARRAYPTR_H

#include <halvorine/com.h>

#include <cstdint>
#include <utility>

#include "platform/ComPtr.h"

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

// Calls visit(index, element) for each element of a one-dimensional array of IUnknown*, in index
// order; element is null for a null slot and is held only for the call. A null array holds
// nothing. Gives the first failing status of the array's calls, which ends the walk, or S_OK.
template <class Visit>
HRESULT ForEachElement(SAFEARRAY* array, Visit visit) {
  if (array == nullptr) return S_OK;
  LONG lower = 0;
  LONG upper = -1;
  HRESULT status = SafeArrayGetLBound(array, 1, &lower);
  if (SUCCEEDED(status)) status = SafeArrayGetUBound(array, 1, &upper);
  // 64 bits, so that an upper bound of 0x7FFFFFFF ends the loop.
  for (std::int64_t at = lower; SUCCEEDED(status) && at <= upper; ++at) {
    LONG index = static_cast<LONG>(at);
    ComPtr<IUnknown> element;
    status = SafeArrayGetElement(array, &index, element.Receive());
    if (SUCCEEDED(status)) visit(index, element.get());
  }
  return status;
}

}  // namespace halvorine

#endif  // HALVORINE_PLATFORM_SAFEARRAYPTR_H
