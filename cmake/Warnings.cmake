# Warning flags for the project's own targets: link halvorine_warnings privately.
add_library(halvorine_warnings INTERFACE)
target_compile_options(halvorine_warnings INTERFACE -Wall -Wextra -Wshadow -Wnon-virtual-dtor)
if(HALVORINE_WERROR)
  target_compile_options(halvorine_warnings INTERFACE -Werror)
endif()
