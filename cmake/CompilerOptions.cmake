# Options that every target of ours takes: warnings, hardening, reproducible paths, sanitizers.

add_library(tk_options INTERFACE)

target_compile_options(tk_options INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
    -fstack-protector-strong -fcf-protection=full
    # A record or an assertion names the path within the repository, whatever folder it was
    # built in. The last matching map wins: the repository alone, a path in it, the build folder.
    "-ffile-prefix-map=${CMAKE_SOURCE_DIR}=."
    "-ffile-prefix-map=${CMAKE_SOURCE_DIR}/="
    "-ffile-prefix-map=${CMAKE_BINARY_DIR}=build")
target_compile_definitions(tk_options INTERFACE
    $<$<AND:$<CONFIG:Release>,$<STREQUAL:${TK_SANITIZER},none>>:_FORTIFY_SOURCE=2>)
# The C library's startup objects are not marked for control-flow protection, so the linker would
# remove our mark. They return in the ordinary way, which a shadow stack allows. But their _init()
# is not a marked target of an indirect call, so the program must not promise that for them (-z
# ibt).
target_link_options(tk_options INTERFACE
    -Wl,-z,shstk
    -Wl,-z,relro,-z,now,-z,noexecstack -Wl,--as-needed)

if(TK_SANITIZER STREQUAL "address")
    set(tk_sanitizer_flags -fsanitize=address,undefined -fno-sanitize-recover=all
        -fno-omit-frame-pointer)
elseif(TK_SANITIZER STREQUAL "thread")
    set(tk_sanitizer_flags -fsanitize=thread -fno-omit-frame-pointer)
    # The sanitizer does not know fences. Asio uses them next to its locks, which the sanitizer
    # knows.
    target_compile_definitions(tk_options INTERFACE BOOST_ASIO_DISABLE_FENCED_BLOCK)
elseif(NOT TK_SANITIZER STREQUAL "none")
    message(FATAL_ERROR "TK_SANITIZER must be none, address or thread")
endif()
if(TK_BUILD_FUZZERS)
    # -O1 is fast enough to try many inputs. Failed checks of the standard library count as faults,
    # too.
    target_compile_options(tk_options INTERFACE -O1 -fsanitize=fuzzer-no-link)
    target_compile_definitions(tk_options INTERFACE _GLIBCXX_ASSERTIONS)
endif()
target_compile_options(tk_options INTERFACE ${tk_sanitizer_flags})
target_link_options(tk_options INTERFACE ${tk_sanitizer_flags})
