#!/bin/bash
# Runs the suites under the sanitizers and under valgrind.
#
#   scripts/test-sanitizers.sh            all of it
#   scripts/test-sanitizers.sh STAGE...   of these stages:
#
#   asan       address and undefined behaviour, the suites that need no engine
#   tsan       threads, the same suites
#   window     address and undefined behaviour, the suites that show the window
#   memcheck   valgrind, the unit suites
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

run_asan() {
    build asan
    run_suites asan
}

run_tsan() {
    build tsan
    run_suites tsan
}

# The toolkit and the engine keep much memory until the process ends and never free all of it, so a
# leak check would report theirs.
run_window() {
    build asan-engine window_suites
    ASAN_OPTIONS=detect_leaks=0 run_suites asan-engine
}

# Cases that cannot run under valgrind, by suite.
declare -A left_out=(
    # These use up their stack and must die of that. Valgrind does not let them: it ends them
    # itself.
    [log_config_tests]='EffectiveTableDeathTest.*'
    # This leaves setlocale() without memory, and there the C library loses a block of its own.
    [failing_calls_tests]='*.EveryAllocationOfTheFirstUse'
    # These watch a child process through pidfd_open(), a system call that valgrind does not know.
    [support_process_tests]='SessionBus.*'
    [tkagent_tests]='CommandLine.*:Demo.*:LaunchedProcess.*:OperationRunner.*'
)

# Some suites count or fail allocations with functions of their own. Valgrind would replace these by
# its own. The C library's functions, which they call, stay under its control.
run_under_valgrind() {
    local suite=$1
    G_DEBUG=fatal-criticals valgrind --quiet --error-exitcode=99 \
        --leak-check=full --show-leak-kinds=definite --errors-for-leak-kinds=definite \
        --soname-synonyms=somalloc=nouserintercepts \
        "$root/build/release/tests/$suite" --gtest_filter="-${left_out[$suite]:-}"
}

# Each suite runs as one process here, because valgrind takes longer to start than most cases to
# run.
run_memcheck() {
    local suite log failed=()
    build release
    step "Tests (memcheck)"
    log=$(mktemp)
    for suite in $(suites_without_engine); do
        SECONDS=0
        if run_under_valgrind "$suite" >"$log" 2>&1; then
            printf '%s: %s, %d s\n' "$suite" "$(grep -a '^\[  PASSED  \]' "$log")" "$SECONDS"
        else
            cat "$log"
            failed+=("$suite")
        fi
    done
    rm -f "$log"
    [ ${#failed[@]} -eq 0 ] || fail "$current_step: ${failed[*]}"
}

suites_without_engine() {
    find "$root/build/release/tests" -maxdepth 1 -name '*_tests' \
        ! -name 'window_*' ! -name 'e2e_*' ! -name controller_tests ! -name package_tests -printf '%f\n' | sort
}

stages=("$@")
[ $# -gt 0 ] || stages=(asan tsan window memcheck)
for stage in "${stages[@]}"; do
    case $stage in
        asan | tsan | window | memcheck) ;;
        *) fail "unknown stage: $stage" ;;
    esac
done
"$root/scripts/install-deps.sh" --sanitizers || exit 1
for stage in "${stages[@]}"; do
    "run_$stage"
done
