#!/bin/bash
# Formats the manual pages with every warning on; says what groff says.
#   manual-pages-are-clean.sh PAGE...
set -euo pipefail

for page in "$@"; do
    warnings=$(groff -man -t -Tutf8 -ww -z "$page" 2>&1)
    if [ -n "$warnings" ]; then
        printf '%s\n' "$warnings" >&2
        exit 1
    fi
done
