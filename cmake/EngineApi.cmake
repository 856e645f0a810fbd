# The engine's API: 4.0 goes with libsoup 2.4, 4.1 with libsoup 3. A process can hold only one of
# the two libraries, so the whole build follows one choice. It is not cached, because what the
# system has can change.
tk_find_package(PkgConfig)

set(TK_ENGINE_API "" CACHE STRING "API of the engine: 4.0, 4.1, or empty for the script's choice")
set_property(CACHE TK_ENGINE_API PROPERTY STRINGS "" 4.0 4.1)
set(tk_engine_api "${TK_ENGINE_API}")
if(NOT tk_engine_api)
    execute_process(COMMAND "${PROJECT_SOURCE_DIR}/scripts/engine-api.sh"
        OUTPUT_VARIABLE tk_engine_api
        OUTPUT_STRIP_TRAILING_WHITESPACE
        COMMAND_ERROR_IS_FATAL ANY)
endif()

if(tk_engine_api STREQUAL "4.0")
    set(tk_soup_module libsoup-2.4)
    set(tk_engine_library libwebkit2gtk-4.0.so.37)
elseif(tk_engine_api STREQUAL "4.1")
    set(tk_soup_module libsoup-3.0)
    set(tk_engine_library libwebkit2gtk-4.1.so.0)
else()
    message(FATAL_ERROR "TK_ENGINE_API must be 4.0 or 4.1")
endif()

tk_find_modules(WEBKIT webkit2gtk-${tk_engine_api})
tk_find_modules(SOUP ${tk_soup_module})
pkg_get_variable(tk_engine_libdir webkit2gtk-${tk_engine_api} libdir)
set(tk_engine_programs "${tk_engine_libdir}/webkit2gtk-${tk_engine_api}")
