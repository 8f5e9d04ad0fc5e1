// Linked into each library that carries its own copy of the C++ runtime. That copy keeps an
// emergency pool for exceptions (about 73 KB) which it frees only when asked, as valgrind asks at
// exit; without this, every unload of the library would leave its pool behind.
namespace __gnu_cxx {
void __freeres();
}

namespace {

// Priority 101: after the library's static destructors, which may still throw and catch.
__attribute__((destructor(101))) void ReleaseRuntime() { __gnu_cxx::__freeres(); }

}  // namespace
