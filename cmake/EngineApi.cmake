# The engine's API: 4.0 goes with libsoup 2.4, 4.1 with libsoup 3. A process can hold only one of
# the two libraries, so the whole build follows one choice: 4.0 wherever it is present.
find_package(PkgConfig REQUIRED)

pkg_check_modules(TK_OLDER_ENGINE QUIET webkit2gtk-4.0)
if(TK_OLDER_ENGINE_FOUND)
    set(tk_default_engine_api 4.0)
else()
    set(tk_default_engine_api 4.1)
endif()
set(TK_ENGINE_API ${tk_default_engine_api} CACHE STRING "API of the engine: 4.0 or 4.1")
set_property(CACHE TK_ENGINE_API PROPERTY STRINGS 4.0 4.1)

if(TK_ENGINE_API STREQUAL "4.0")
    set(tk_soup_module libsoup-2.4)
    set(tk_engine_library libwebkit2gtk-4.0.so.37)
elseif(TK_ENGINE_API STREQUAL "4.1")
    set(tk_soup_module libsoup-3.0)
    set(tk_engine_library libwebkit2gtk-4.1.so.0)
else()
    message(FATAL_ERROR "TK_ENGINE_API must be 4.0 or 4.1")
endif()

pkg_check_modules(WEBKIT REQUIRED IMPORTED_TARGET webkit2gtk-${TK_ENGINE_API})
pkg_check_modules(SOUP REQUIRED IMPORTED_TARGET ${tk_soup_module})
pkg_get_variable(tk_engine_libdir webkit2gtk-${TK_ENGINE_API} libdir)
set(tk_engine_programs "${tk_engine_libdir}/webkit2gtk-${TK_ENGINE_API}")
