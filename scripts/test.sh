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
# ctest has the last word.
run_suites release
