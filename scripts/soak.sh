#!/bin/bash
# Runs operations of every kind, with faults in between, against the real program for an hour. Draws
# what its processes used meanwhile (with gnuplot, if that is installed).
#
#   scripts/soak.sh [seconds]
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

seconds=${1:-3600}
samples="$root/build/soak.csv"
plot="$root/build/soak.svg"

"$root/scripts/install-deps.sh" --tests || exit 1
build release e2e_tests
step "Soak for $seconds seconds"
(cd "$root/build/release/tests" &&
    G_DEBUG=fatal-criticals TK_SOAK_SECONDS=$seconds TK_SOAK_SAMPLES=$samples ./e2e_tests \
        --gtest_filter='Soak.*') ||
    fail "$current_step"
if command -v gnuplot >/dev/null; then
    "$root/scripts/draw-soak.sh" "$samples" "$plot" || fail "drawing"
    printf 'soak.sh: no growth that stays; drawn in %s\n' "$plot"
else
    printf 'soak.sh: no growth that stays; samples in %s\n' "$samples"
fi
