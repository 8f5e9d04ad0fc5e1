# The libraries and the host carry their own copy of the C++ runtime, as a Windows component built
# against the static runtime does: nothing crosses between modules but COM interfaces, BSTRs and
# arrays, the component loads into hosts of any libstdc++, and a process spares the loader's
# binding of the shared libstdc++. The sanitizer presets turn it off, so that the sanitizers see
# every new and delete.
option(HALVORINE_OWN_RUNTIME "Link the C++ runtime statically into the libraries and the host" ON)

function(halvorine_own_runtime target)
  if(NOT HALVORINE_OWN_RUNTIME)
    return()
  endif()
  # --as-needed: the driver adds the math library for the runtime, which nothing of ours calls.
  target_link_options(${target} PRIVATE -static-libstdc++ -static-libgcc -Wl,--as-needed)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "SHARED_LIBRARY")
    # The runtime's symbols stay inside the library, so that no host binds to them.
    target_link_options(${target} PRIVATE -Wl,--exclude-libs,ALL)
    target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/src/platform/RuntimeRelease.cpp)
  endif()
endfunction()
