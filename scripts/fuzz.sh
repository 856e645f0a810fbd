#!/bin/bash
# Fuzzes every target at length, two at a time, under the address and undefined-behaviour
# sanitizers, and reports the result.
#
#   scripts/fuzz.sh             ten minutes each
#   scripts/fuzz.sh SECONDS     this long each
#
# Findings are in build/fuzz/fuzz/findings/, new inputs in build/fuzz/fuzz/corpus/. The new inputs
# are also replayed in the ordinary build, where the hardened C library checks them.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

seconds=${1:-600}
[[ $seconds =~ ^[1-9][0-9]*$ ]] || fail "not a number of seconds: $seconds"

"$root/scripts/install-deps.sh" --tests || exit 1
build fuzz fuzzers

programs=$root/build/fuzz/fuzz
logs=$programs/logs
mkdir -p "$logs"
mapfile -t targets < <(cd "$root/fuzz/corpus" && printf '%s\n' *)
declare -A name_of=()
failed=()
# No fuzzer keeps running, however this script ends.
trap 'kill "${!name_of[@]}" 2>/dev/null || true' EXIT
trap 'exit 1' HUP INT TERM

# report TARGET RESULT: one line of the table, from the target's log.
report() {
    local log=$logs/$1.log executions coverage findings
    executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    coverage=$(sed -n 's/^#[0-9]*.* cov: \([0-9]*\) ft: \([0-9]*\) .*/\1 \2/p' "$log" | tail -1)
    findings=none
    if [ "$2" -ne 0 ]; then
        findings=$(sed -n 's/.*\(does not hold: .*\)/\1/p; s/^SUMMARY: //p' "$log" | head -1)
        findings="${findings:-exit status $2} (see $log)"
    fi
    # shellcheck disable=SC2086 # two numbers
    printf '%-24s %12s %8s %8s  %s\n' "$1" "${executions:-?}" ${coverage:-? ?} "$findings"
}

# finish_one: waits for one of the running targets.
finish_one() {
    local pid result=0
    wait -n -p pid "${!name_of[@]}" || result=$?
    report "${name_of[$pid]}" "$result"
    [ "$result" -eq 0 ] || failed+=("${name_of[$pid]}")
    unset "name_of[$pid]"
}

step "Fuzz ${#targets[@]} targets, $seconds s each, two at a time"
printf '%-24s %12s %8s %8s  %s\n' target executions cov ft findings
for target in "${targets[@]}"; do
    [ "${#name_of[@]}" -lt 2 ] || finish_one
    "$root/fuzz/run.sh" "$programs/${target}_fuzzer" "$target" "$seconds" \
        >"$logs/$target.log" 2>&1 &
    name_of[$!]=$target
done
while [ "${#name_of[@]}" -gt 0 ]; do
    finish_one
done

[ "${#failed[@]}" -eq 0 ] || fail "faults found by: ${failed[*]}"

build release fuzzers
step "Replay the new inputs (release)"
for target in "${targets[@]}"; do
    log=$logs/$target-replay.log
    "$root/build/release/fuzz/${target}_fuzzer" "$programs/corpus/$target" >"$log" 2>&1 ||
        fail "replay of $target; the last file in $log"
    printf '%-24s %s\n' "$target" "$(tail -1 "$log")"
done
printf '\nNo fault found.\n'
