#!/bin/bash
# Runs the suites that need no engine under the address, undefined-behaviour and thread sanitizers.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

"$root/scripts/install-deps.sh" --tests || exit 1
for preset in asan tsan; do
    build "$preset"
    run_suites "$preset"
done
