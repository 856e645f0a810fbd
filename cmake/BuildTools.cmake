# Looks for what project() is going to need, because CMake's own errors do not say how to get that.
# A compiler that the environment names is left to CMake.
if(CMAKE_GENERATOR STREQUAL "Ninja")
    tk_need_tool(ninja ninja-build samu)
endif()
if(CMAKE_CXX_COMPILER)
    tk_need_tool(${CMAKE_CXX_COMPILER})
elseif(NOT DEFINED ENV{CXX})
    tk_need_tool(c++ g++ clang++)
endif()
