#!/bin/bash
# Checks the form of the sources, and looks for what compilers let pass. Needs a configured
# release build (the compile commands).
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cd "$root"

step "Check the format"
git ls-files '*.h' '*.cpp' | xargs clang-format --dry-run --Werror || fail "$current_step"

step "clang-tidy"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
# The pattern names our own folders within the repository, whatever folder that is in.
if ! run-clang-tidy -quiet -p build/release "^$root/(vpn|tools)/.*\.cpp$" >"$log" 2>&1; then
    grep -E 'error:|warning:|note:' "$log" || cat "$log"
    fail "$current_step"
fi
printf 'clean: %s files\n' "$(git ls-files 'vpn/*.cpp' 'tools/*.cpp' | wc -l)"
