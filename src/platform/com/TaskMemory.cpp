// The allocator of what the runtime hands out through LPOLESTR* and the like.
#include <halvorine/com.h>

#include <cstdlib>

HALVOCOM_API LPVOID CoTaskMemAlloc(SIZE_T cb) { return std::malloc(cb == 0 ? 1 : cb); }

HALVOCOM_API void CoTaskMemFree(LPVOID pv) { std::free(pv); }
