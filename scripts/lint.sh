#!/bin/bash
# Checks the form of the sources, and looks for what compilers let pass. Needs a configured
# release build (the compile commands).
#
#   scripts/lint.sh           what is quick enough for every run
#   scripts/lint.sh --tests   clang-tidy on all tests as well, which takes a quarter of an hour
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cd "$root"

# cppcheck_folders CHECKS FOLDER...: what is right nevertheless has its reason in the source, or in
# the list of suppressions.
cppcheck_folders() {
    local checks=$1
    shift
    cppcheck --quiet --project=build/release/compile_commands.json "${@/#/--file-filter=}" \
        --enable="$checks" --library=gtk --library=posix --library=googletest \
        --inline-suppr --suppressions-list=.cppcheck-suppressions --error-exitcode=1 \
        -j "$(nproc)" || fail "$current_step"
}

step "Check the format"
git ls-files '*.h' '*.cpp' | xargs clang-format --dry-run --Werror || fail "$current_step"

step "cppcheck"
cppcheck_folders warning,style,performance,portability 'vpn/*' 'tools/*'
# Tests say on purpose what a program would not: compare a copy, drop what a call gives.
cppcheck_folders warning,performance,portability 'tests/*'
printf 'clean: %s files\n' "$(git ls-files 'vpn/*.cpp' 'tools/*.cpp' 'tests/*.cpp' | wc -l)"

step "clang-tidy"
commands=build/release
case "${1:-}" in
    "") sources=('vpn/*.cpp' 'tools/*.cpp') ;;
    --tests)
        sources=('vpn/*.cpp' 'tools/*.cpp' 'tests/*.cpp')
        # clang-tidy cannot read the headers that the compiler of the build has precompiled.
        commands=build/lint
        cmake --preset release -B "$commands" -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON >/dev/null
        ;;
    *) fail "unknown argument: $1" ;;
esac
log=$(mktemp)
trap 'rm -f "$log"' EXIT
mapfile -t files < <(git ls-files "${sources[@]}")
# The patterns name our own files within the repository, whatever folder that is in.
if ! run-clang-tidy -quiet -p "$commands" "${files[@]/#/^$root/}" >"$log" 2>&1; then
    grep -E 'error:|warning:|note:' "$log" || cat "$log"
    fail "$current_step"
fi
printf 'clean: %s files\n' "${#files[@]}"
