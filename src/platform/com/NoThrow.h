#ifndef HALVORINE_PLATFORM_COM_NOTHROW_H
#define HALVORINE_PLATFORM_COM_NOTHROW_H

#include <halvorine/com.h>

#include <new>

namespace halvorine {

// Runs the body of an exported call, which gives its status, so that no exception leaves the
// runtime: running out of memory gives E_OUTOFMEMORY, anything else E_FAIL.
template <class Body>
HRESULT NoThrow(Body&& body) noexcept {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_FAIL;
  }
}

}  // namespace halvorine

#endif  // HALVORINE_PLATFORM_COM_NOTHROW_H
