#!/bin/bash
# Runs the commands that the documents show, in a tree that has been built. Commands that take long,
# need a crash file that does not exist yet, or read the machine's own log are not run; only their
# program must exist.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

# The lines of code that begin with a program of the tree or of the build, without their remarks.
documented_commands() {
    sed -nE 's/^    ((scripts|build)\/|cmake |ctest |journalctl )/\1/p' \
        "$root"/README.md "$root"/HACKING.md "$root"/docs/*.md | sed -E 's/ +# .*//' | sort -u
}

# The programs that a sentence names.
named_programs() {
    grep -ohE '`(scripts|build/release)/[^` ]+' ./*.md docs/*.md | tr -d '`' | sort -u
}

step "Commands of the documents"
cd "$root"
readarray -t commands < <(documented_commands)
[ ${#commands[@]} -gt 0 ] || fail "no command found"
for command in "${commands[@]}"; do
    printf '%s\n' "$command"
    program=${command%% *}
    case $command in
        journalctl\ *) ;;
        scripts/* | *...*) [ -x "$program" ] || fail "no such program: $program" ;;
        *) bash -c "$command" >/dev/null || fail "$command" ;;
    esac
done
for program in $(named_programs); do
    [ -x "$program" ] || fail "no such program: $program"
done
