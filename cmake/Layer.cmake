# tk_add_layer(<name> SOURCES <files> [LINKS <targets>] [PRIVATE_LINKS <targets>])
#
# One static library for one folder. Its only public include path is that folder, so a file can
# include no header of a layer that its library does not link: reaching up does not compile.
function(tk_add_layer name)
    cmake_parse_arguments(layer "" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
    add_library(${name} STATIC ${layer_SOURCES})
    target_include_directories(${name} PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}")
    target_link_libraries(${name} PUBLIC ${layer_LINKS} PRIVATE tk_options ${layer_PRIVATE_LINKS})
endfunction()
