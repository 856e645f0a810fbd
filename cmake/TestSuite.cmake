# tk_add_test_headers(<name> HEADERS <files> LINKS <targets>)
#
# Headers that many suites include, compiled once: reading them takes longer than all the rest.
function(tk_add_test_headers name)
    cmake_parse_arguments(set "" "" "HEADERS;LINKS" ${ARGN})
    set(nothing "${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp")
    file(CONFIGURE OUTPUT "${nothing}" CONTENT "")
    add_library(${name} OBJECT "${nothing}")
    target_precompile_headers(${name} PRIVATE ${set_HEADERS})
    # As an executable's sources are compiled, or the compiler refuses to use it for them.
    set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
    target_compile_options(${name} PRIVATE -fPIE)
    target_link_libraries(${name} PRIVATE tk_options ${set_LINKS})
endfunction()

# tk_add_suite(<name> SOURCES <files> LINKS <targets> [HEADERS <target>] [PARTS <number>]
#     [PROPERTIES <of its tests, if it has no parts>])
#
# One GoogleTest program, <name>. ctest runs its cases one by one, so that they can run in parallel
# and in any order. With PARTS it runs them in as many processes: that is for suites whose process is
# expensive to start. A suite links exactly the library that it tests, and test support. GoogleTest's
# own main() is used if the suite has none. HEADERS names other precompiled headers than
# GoogleTest's.
function(tk_add_suite name)
    cmake_parse_arguments(suite "" "HEADERS;PARTS" "SOURCES;LINKS;PROPERTIES" ${ARGN})
    if(NOT suite_HEADERS)
        set(suite_HEADERS tk_test_headers)
    endif()
    add_executable(${name} ${suite_SOURCES})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
    target_include_directories(${name} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}")
    target_precompile_headers(${name} REUSE_FROM ${suite_HEADERS})
    target_link_libraries(${name} PRIVATE tk_options ${suite_LINKS} GTest::gmock_main)
    if(suite_PARTS)
        tk_add_suite_parts(${name} ${suite_PARTS})
        return()
    endif()
    gtest_discover_tests(${name}
        TEST_PREFIX "${name}."
        DISCOVERY_MODE PRE_TEST
        PROPERTIES TIMEOUT 120 ENVIRONMENT "G_DEBUG=fatal-criticals" ${suite_PROPERTIES})
endfunction()

# tk_add_suite_parts(<name> <parts>): GoogleTest deals the cases out to the parts. They begin first,
# because the longest would otherwise keep one processor busy in the end.
function(tk_add_suite_parts name parts)
    foreach(part RANGE 1 ${parts})
        math(EXPR index "${part} - 1")
        set(test ${name}.part_${part}_of_${parts})
        add_test(NAME ${test} COMMAND ${name} --gtest_brief=1)
        set_tests_properties(${test} PROPERTIES
            COST 100
            TIMEOUT 600
            ENVIRONMENT "G_DEBUG=fatal-criticals;GTEST_TOTAL_SHARDS=${parts};GTEST_SHARD_INDEX=${index}")
    endforeach()
endfunction()
