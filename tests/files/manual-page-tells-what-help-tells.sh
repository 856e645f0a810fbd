#!/bin/bash
# Looks in tkagent's manual page for each option and exit status that its help names.
#   manual-page-tells-what-help-tells.sh TKAGENT PAGE
set -euo pipefail
tkagent=$1
page=$(sed 's/\\-/-/g' "$2")

help=$("$tkagent" --help && "$tkagent" demo --help && "$tkagent" run --help)
options=$(grep -o -e '--[a-z-]*' <<<"$help" | sort -u)
statuses=$(sed -n 's/^  [0-9]  //p' <<<"$help" | sort -u)
[ -n "$options" ] && [ -n "$statuses" ]

missing=0
while read -r text; do
    if ! grep -qiF -e "$text" <<<"$page"; then
        printf 'not in the manual page: %s\n' "$text" >&2
        missing=1
    fi
done <<<"$options"$'\n'"$statuses"
exit "$missing"
