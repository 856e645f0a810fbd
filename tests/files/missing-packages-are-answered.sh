#!/bin/bash
# Configures without things that the build needs, and looks for the line that installs them.
set -euo pipefail
root=$(realpath "$(dirname "$0")/../..")

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/bin"
for tool in cat cmake grep rm; do
    ln -s "$(command -v "$tool")" "$folder/bin"
done

# configure OPTION...: in a new folder, because CMake remembers what it found.
configure() {
    rm -rf "$folder/build"
    cmake -S "$root" -B "$folder/build" "$@" >"$folder/log" 2>&1
}

# fail_with_log TEXT
fail_with_log() {
    cat "$folder/log"
    printf '%s\n' "$1" >&2
    exit 1
}

# expect_answer NAME LINE OPTION...: configuring fails, names what is missing, and shows the line.
expect_answer() {
    ! configure "${@:3}" || fail_with_log "not missed: $1"
    grep -q "^  Missing: $1\. " "$folder/log" || fail_with_log "not named: $1"
    grep -qx " *$2" "$folder/log" || fail_with_log "not shown: $2"
}

expect_answer GTest 'scripts/install-deps.sh --tests' \
    --preset release -DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON
grep -qx ' *cmake --preset program' "$folder/log"
expect_answer Boost 'scripts/install-deps.sh' \
    --preset program -DCMAKE_DISABLE_FIND_PACKAGE_Boost=ON
PKG_CONFIG_LIBDIR=$folder expect_answer webkit2gtk-4.1 'TK_ENGINE_API=4.1 scripts/install-deps.sh' \
    --preset program -DTK_ENGINE_API=4.1
PATH=$folder/bin expect_answer ninja 'scripts/install-deps.sh' --preset program

# What only the tests need, the program does not.
configure --preset program -DCMAKE_DISABLE_FIND_PACKAGE_{GTest,benchmark,OpenSSL,PNG}=ON ||
    fail_with_log "the program needs more than it should"
