#!/bin/bash
# Runs every test with counters in vpn/, and prints which of its lines and branches were run. Fails
# if fewer were run than promised, or if code that reads other people's data was not run completely.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

"$root/scripts/install-deps.sh" --coverage || exit 1
build coverage
find "$root/build/coverage" -name '*.gcda' -delete
run_suites coverage

step "Count"
cd "$root"
counts=build/coverage/coverage.json
# Branches that no test can take: those that the compiler adds for exceptions and for the ends of
# objects, failing assertions, the way past a handler of every std::exception or of the only kind
# that can come, and the lock around the creation of a static object.
untaken='.*\bassert\(.*|.*\bcatch \(const std::(exception|bad_alloc)&.*|\s*static .*'
gcovr --filter vpn/ --exclude-throw-branches --exclude-unreachable-branches \
    --exclude-branches-by-pattern "$untaken" \
    --json "$counts" build/coverage/vpn build/coverage/tests/unit || fail "$current_step"

# report ARGUMENT...: a table of the counts.
report() {
    gcovr --add-tracefile "$counts" "$@"
}

step "Lines of vpn/, and those that were not run"
report --fail-under-line 95 || fail "$current_step"

step "Branches of vpn/, and the lines in which one was not taken"
report --branches --fail-under-branch 85 || fail "$current_step"

step "Parsers"
parsers='(JsonIpcFrameReader|FlatJson|Browser(Operation|Result|Types)|CookieHeader|MoCatalog'
parsers+='|CharacterReferences|UserAgent)\.(h|cpp)'
report --filter "vpn/.*/$parsers" --branches --fail-under-line 100 --fail-under-branch 100 ||
    fail "$current_step"
