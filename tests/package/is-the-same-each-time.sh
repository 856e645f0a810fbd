#!/bin/bash
# Packs the same build once more, and compares the packages byte for byte.
#   is-the-same-each-time.sh BUILD_FOLDER PACKAGE_FOLDER
set -euo pipefail

again=$(mktemp -d)
trap 'rm -rf "$again"' EXIT
"$(dirname "$0")/../../packaging/pack.sh" "$1" "$again" >/dev/null
diff --recursive "$2" "$again"
