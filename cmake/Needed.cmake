# What the build needs of the system. If a piece is missing, the build ends with the line that
# installs it.

set(tk_install_command "scripts/install-deps.sh")
if(TK_ENGINE_API)
    set(tk_install_command "TK_ENGINE_API=${TK_ENGINE_API} ${tk_install_command}")
endif()
if(TK_BUILD_TESTS)
    string(APPEND tk_install_command " --tests")
    set(tk_other_way "The program alone needs less:\n    cmake --preset program\n")
endif()

# tk_missing(<names>): ends the build.
function(tk_missing)
    list(JOIN ARGN ", " names)
    message(FATAL_ERROR "Missing: ${names}. This installs what the build needs:\n"
        "    ${tk_install_command}\n${tk_other_way}")
endfunction()

# tk_need_tool(<names>): a program that has one of these names.
function(tk_need_tool)
    find_program(tool NAMES ${ARGN} NO_CACHE)
    if(NOT tool)
        tk_missing(${ARGV0})
    endif()
endfunction()

# tk_find_package(<arguments of find_package>)
macro(tk_find_package package)
    find_package(${package} ${ARGN} QUIET)
    if(NOT ${package}_FOUND)
        tk_missing(${package})
    endif()
endmacro()

# tk_find_modules(<prefix> <modules of pkg-config>): makes the target PkgConfig::<prefix>.
macro(tk_find_modules prefix)
    pkg_check_modules(${prefix} QUIET IMPORTED_TARGET ${ARGN})
    if(NOT ${prefix}_FOUND)
        tk_missing(${ARGN})
    endif()
endmacro()
