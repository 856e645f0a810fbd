#!/bin/bash
# Builds the committed program in two folders with different names, and compares the two byte for
# byte.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# build_clone FOLDER: a release build of the program alone, of the last commit.
build_clone() {
    step "Build in $1"
    git clone --quiet "$root" "$1" || fail "$current_step"
    (cd "$1" && cmake --preset release -DTK_BUILD_TESTS=OFF >/dev/null &&
        cmake --build build/release --target tkwebhelper) || fail "$current_step"
}

build_clone "$work/here"
build_clone "$work/quite/another folder"
step "Compare"
cmp "$work/here/build/release/bin/tkwebhelper" \
    "$work/quite/another folder/build/release/bin/tkwebhelper" || fail "$current_step"
printf 'check-reproducible.sh: the same program, byte for byte\n'
