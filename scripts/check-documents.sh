#!/bin/bash
# Runs the commands that the documents show, in a tree that has been built. What takes long, needs a
# crash that nobody has found yet, or asks the machine's own log, is not run here: of that the
# program must be there.
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
