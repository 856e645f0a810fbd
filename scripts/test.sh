#!/bin/bash
# Installs what is missing, builds, checks, and runs every test: the suites that need no engine
# under the sanitizers first, then all of them as built for release.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

# run_suites PRESET: ctest has the last word.
run_suites() {
    step "Tests ($1)"
    (cd "$root" && ctest --preset "$1" -j "$(nproc)") || fail "$current_step"
}

"$root/scripts/install-deps.sh" --tests || exit 1
build release
"$root/scripts/lint.sh"
for preset in asan tsan; do
    build "$preset"
    run_suites "$preset"
done
run_suites release
