#!/bin/bash
# Runs every test program of the release build whole, its cases in a random order. ctest runs most
# cases in a process of their own; this shows what one case leaves behind for another.
#
#   scripts/test-shuffled.sh            once each
#   scripts/test-shuffled.sh ROUNDS     so often each, with another seed each time
#
# A seed that is printed plays the same order again: PROGRAM --gtest_shuffle --gtest_random_seed=N.
# Wants a release build, which may be another user's.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

rounds=${1:-1}
[[ $rounds =~ ^[1-9][0-9]*$ ]] || fail "not a number of rounds: $rounds"
build=$root/build/release
mapfile -t programs < <(find "$build/tests" -maxdepth 1 -name '*_tests' -printf '%f\n' | sort)
[ ${#programs[@]} -gt 0 ] || fail "nothing is built in $build"

# One of the programs looks at the packages.
compgen -G "$build/packages/*.deb" >/dev/null ||
    "$root/packaging/pack.sh" "$build" "$build/packages" >/dev/null || fail "packages"

# The environment and the patience are ctest's, for all cases of the longest program.
run_program() {
    G_DEBUG=fatal-criticals timeout --kill-after=10 1800 \
        "$build/tests/$1" --gtest_shuffle --gtest_random_seed="$2"
}

log=$(mktemp)
trap 'rm -f "$log"' EXIT
failed=()
for ((round = 1; round <= rounds; ++round)); do
    seed=$((RANDOM + 1))
    step "Round $round of $rounds, seed $seed"
    for program in "${programs[@]}"; do
        SECONDS=0
        if run_program "$program" "$seed" >"$log" 2>&1; then
            printf '%s: %s, %d s\n' "$program" "$(grep -a '^\[  PASSED  \]' "$log")" "$SECONDS"
        else
            cat "$log"
            failed+=("$program (seed $seed)")
        fi
    done
done
[ ${#failed[@]} -eq 0 ] || fail "${failed[*]}"
