#!/bin/bash
# Installs what is missing, builds, checks form and lint, fuzzes for seconds, and runs every test.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

"$root/scripts/install-deps.sh" --tests || exit 1
build release
# Each version of the checkers wants another form. The sources have that of Debian 12's.
if clang-format --version | grep -q 'version 14\.'; then
    "$root/scripts/lint.sh"
else
    step "Form and lint: not checked, because that takes clang 14"
fi
# A few seconds for each way in; scripts/fuzz.sh takes longer.
build fuzz fuzzers
run_suites fuzz
# All that differs between the engine's two APIs goes through these suites.
if [ "$("$root/scripts/engine-api.sh")" = 4.0 ]; then
    build release-4.1 tkwebhelper page_rules_tests window_cookie_header_tests \
        window_certificate_tests e2e_certificate_tests
    run_suites release-4.1 --tests-regex \
        '^(page_rules|window_cookie_header|window_certificate|e2e_certificate)_tests\.'
    TK_HELPER="$root/build/release-4.1/bin/tkwebhelper" \
        GTEST_FILTER='AgentsTraps.*:LoadedLibraries.*:Operations.*:Proxy.*:Replacement.*' \
        run_suites release --tests-regex '^e2e_tests\.'
fi
"$root/scripts/check-documents.sh"
# ctest has the last word.
run_suites release
