# tk_add_suite(<name> SOURCES <files> LINKS <targets> [TIMEOUT <seconds>] [PROPERTIES <of its tests>])
#
# One GoogleTest program, <name>, whose cases ctest runs one by one, so that they can run in
# parallel and in any order. A suite links exactly the library that it tests, and test support.
# GoogleTest's own main() is there for a suite that has none.
function(tk_add_suite name)
    cmake_parse_arguments(suite "" "TIMEOUT" "SOURCES;LINKS;PROPERTIES" ${ARGN})
    if(NOT suite_TIMEOUT)
        set(suite_TIMEOUT 120)
    endif()
    add_executable(${name} ${suite_SOURCES})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
    target_include_directories(${name} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}")
    target_link_libraries(${name} PRIVATE tk_options ${suite_LINKS} GTest::gmock_main)
    gtest_discover_tests(${name}
        TEST_PREFIX "${name}."
        DISCOVERY_MODE PRE_TEST
        PROPERTIES TIMEOUT ${suite_TIMEOUT} ENVIRONMENT "G_DEBUG=fatal-criticals"
                   ${suite_PROPERTIES})
endfunction()
