#!/bin/bash
# Checks the form of the sources, and looks for what compilers let pass.
#
#   scripts/lint.sh           all sources; clang-tidy on vpn/ and tools/
#   scripts/lint.sh --tests   clang-tidy on the tests as well, which takes minutes
#   scripts/lint.sh FILE...   these sources
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cd "$root"

# Prints those of our sources that match the patterns, also those that git does not track yet.
sources() {
    git ls-files --cached --others --exclude-standard --deduplicate -- "$@" |
        while read -r file; do [ ! -e "$file" ] || printf '%s\n' "$file"; done
}

# describe_build FOLDER OPTION...: makes the compile commands that the checkers read. They cannot
# read the headers that the compiler of the build has precompiled. With the engine's newer API the
# program has more sources.
describe_build() {
    local api=
    ! pkg-config --exists webkit2gtk-4.1 || api=4.1
    cmake --preset release -B "$1" -DTK_ENGINE_API="$api" -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON \
        "${@:2}" >/dev/null || fail "cmake"
}

check_format() {
    step "Check the format"
    clang-format --dry-run --Werror "$@" || fail "$current_step"
    printf 'clean: %s files\n' $#
}

# run_cppcheck CHECKS FILE...: what is right nevertheless has its reason in the source, or in the
# list of suppressions.
run_cppcheck() {
    local checks=$1
    shift
    [ $# -gt 0 ] || return 0
    cppcheck --quiet --project=build/lint/compile_commands.json "${@/#/--file-filter=*}" \
        --enable="$checks" --library=gtk --library=posix --library=googletest \
        --inline-suppr --suppressions-list=.cppcheck-suppressions --error-exitcode=1 \
        -j "$(nproc)" || fail "$current_step"
    printf 'clean: %s files\n' $#
}

check_with_cppcheck() {
    local tests=() others=() file
    for file in "$@"; do
        case $file in
            tests/*.cpp) tests+=("$file") ;;
            vpn/*.cpp | tools/*.cpp) others+=("$file") ;;
        esac
    done
    step "cppcheck"
    describe_build build/lint -DTK_JOIN_TEST_SOURCES=OFF
    run_cppcheck warning,style,performance,portability ${others[@]+"${others[@]}"}
    # Tests say on purpose what a program would not: compare a copy, drop what a call gives.
    run_cppcheck warning,performance,portability ${tests[@]+"${tests[@]}"}
}

# tidy FOLDER FILE: one line when it is clean, else what was found.
tidy() {
    local log
    log=$(mktemp)
    # What joins sources includes them, which is wrong anywhere else. The compiler that builds has
    # warnings of its own.
    if clang-tidy --quiet -p "$1" --checks=-bugprone-suspicious-include \
        --extra-arg=-Wno-unknown-warning-option \
        --header-filter='(vpn|tools|tests)/.*\.(h|cpp)$' "$2" >"$log" 2>&1; then
        printf 'clean: %s\n' "${2#"$root"/}"
    else
        grep -E 'error:|warning:|note:' "$log" || cat "$log"
    fi
    rm -f "$log"
}
export -f tidy
export root

# check_with_clang_tidy FOLDER FILE...
check_with_clang_tidy() {
    local folder=$1 log
    shift
    [ $# -gt 0 ] || return 0
    step "clang-tidy"
    log=$(mktemp)
    printf '%s\n' "$@" | xargs -P "$(nproc)" -I{} bash -c 'tidy "$@"' tidy "$folder" {} |
        tee "$log"
    [ "$(grep -c '^clean: ' "$log")" -eq $# ] || fail "$current_step"
    rm -f "$log"
}

# Prints the joined sources of each library and program, and the few that cannot be joined. The
# headers of joined sources are read once.
joined_sources() {
    sed -n 's/^  "file": "\(.*\)",*$/\1/p' build/lint-joined/compile_commands.json |
        grep -E "^$root/(build/lint-joined/)?($1)/" | sort -u
}

case "${1:-}" in
    "" | --tests)
        mapfile -t files < <(sources '*.h' '*.cpp')
        check_format "${files[@]}"
        check_with_cppcheck "${files[@]}"
        describe_build build/lint-joined -DCMAKE_UNITY_BUILD=ON
        # clang-tidy looks for its configuration above the joined source.
        cp tests/.clang-tidy build/lint-joined/tests/
        mapfile -t joined < <(joined_sources "vpn|tools${1:+|tests}")
        check_with_clang_tidy build/lint-joined "${joined[@]}"
        ;;
    -*) fail "unknown argument: $1" ;;
    *)
        mapfile -t files < <(realpath --relative-to="$root" "$@")
        check_format "${files[@]}"
        check_with_cppcheck "${files[@]}"
        mapfile -t units < <(printf '%s\n' "${files[@]}" | grep '\.cpp$')
        check_with_clang_tidy build/lint ${units[@]+"${units[@]/#/$root/}"}
        ;;
esac
