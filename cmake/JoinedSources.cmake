# For tests, fuzzers and benchmarks: most of the time is spent on the templates of their libraries,
# which every source needs again. The program that is shipped is built without: it takes from the
# libraries of vpn/ only the sources that it needs.
set(CMAKE_UNITY_BUILD ${TK_JOIN_TEST_SOURCES})
if(TK_JOIN_TEST_SOURCES AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # The joined source includes the others, which the compiler takes for headers.
    add_compile_options(-Wno-subobject-linkage)
endif()
