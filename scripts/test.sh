#!/bin/bash
# Installs what is missing, builds, checks form and lint, fuzzes for seconds, and runs every test.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

"$root/scripts/install-deps.sh" --tests || exit 1
build release
"$root/scripts/lint.sh"
# A few seconds for each way in; scripts/fuzz.sh takes longer.
build fuzz fuzzers
run_suites fuzz
# Through these suites all goes that differs between the engine's two APIs.
suites=(page_rules_tests window_cookie_header_tests e2e_loaded_libraries_tests
    e2e_operations_tests e2e_proxy_tests e2e_replacement_tests)
build release-4.1 "${suites[@]}"
run_suites release-4.1 --tests-regex "^($(IFS='|' && echo "${suites[*]}"))\."
"$root/scripts/check-documents.sh"
# ctest has the last word.
run_suites release
