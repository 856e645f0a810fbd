# Counters in vpn/ only, written whenever one of our programs ends in order.

if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    message(FATAL_ERROR "TK_COVERAGE needs g++")
endif()

# Several threads count at once.
set(tk_counters --coverage -fprofile-update=atomic)

# Tests end their child processes with _exit(), which writes no counters by itself.
add_library(tk_coverage_exit OBJECT "${CMAKE_CURRENT_LIST_DIR}/CoverageExit.cpp")
target_link_libraries(tk_options INTERFACE
    $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:$<TARGET_OBJECTS:tk_coverage_exit>>)
target_link_options(tk_options INTERFACE --coverage -Wl,--wrap=_exit)
