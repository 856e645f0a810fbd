#!/bin/bash
# Compares the version in the head of each manual page with that which tkagent prints.
#   manual-pages-bear-the-version.sh TKAGENT PAGE...
set -euo pipefail
version=$("$1" --version)
shift

for page in "$@"; do
    grep -F "\"Tunnelkeep ${version#tkagent }\"" <(grep '^\.TH ' "$page") || {
        printf '%s is not of %s\n' "$page" "$version" >&2
        exit 1
    }
done
