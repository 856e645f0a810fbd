#!/bin/bash
# Asks the compiler which headers a source of a layer could include: it must find those of the
# folders that the layer may see, and refuse all others.
#
#   sees-no-more-than-it-may.sh COMPILER ROOT FILE_OF_INCLUDE_PATHS FOLDER_IT_MAY_SEE...
set -euo pipefail
compiler=$1 root=$2 paths=$3
shift 3
mapfile -t options < <(sed -n 's/^\(..*\)/-I\1/p' "$paths")

preprocess() {
    "$compiler" "${options[@]}" -std=c++17 -E -P -x c++ -
}

# Lines such as "refused PageGuard.h", for every header.
expected_outcomes() {
    local folder header outcome
    find "$root" -name '*.h' -printf '%P\n' | while read -r header; do
        outcome=refused
        for folder in "$@"; do
            [ "$(dirname "$header")" != "$folder" ] || outcome=found
        done
        printf '%s %s\n' "$outcome" "$(basename "$header")"
    done | sort
    printf 'refused %s\n' gtk/gtk.h webkit2/webkit2.h
}

expected=$(expected_outcomes "$@")
outcomes=$(while read -r _ header; do
    printf '#if __has_include("%s")\nfound %s\n#else\nrefused %s\n#endif\n' \
        "$header" "$header" "$header"
done <<<"$expected" | preprocess)
diff <(printf '%s\n' "$expected") <(printf '%s\n' "$outcomes")

# What it cannot find it does refuse.
refused=$(sed -n '0,/^refused /s/^refused //p' <<<"$expected")
! message=$(preprocess <<<"#include \"$refused\"" 2>&1 >/dev/null)
grep -F "fatal error: $refused: No such file" <<<"$message"
