#!/bin/bash
# Builds the committed program in two folders with different names, and compares the two byte for
# byte.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# build_clone FOLDER: the program alone, of the last commit.
build_clone() {
    step "Build in $1"
    git clone --quiet "$root" "$1" || fail "$current_step"
    (cd "$1" && cmake --preset program >/dev/null &&
        cmake --build build/program --target tkwebhelper) || fail "$current_step"
}

build_clone "$work/here"
build_clone "$work/quite/another folder"
step "Compare"
cmp "$work/here/build/program/bin/tkwebhelper" \
    "$work/quite/another folder/build/program/bin/tkwebhelper" || fail "$current_step"
printf 'check-reproducible.sh: the same program, byte for byte\n'
