#!/bin/bash
# Asks scripts/engine-api.sh on systems that have one API of the engine or the other.
set -euo pipefail
script=$(realpath "$(dirname "$0")/../../scripts/engine-api.sh")

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/bin"
export PATH=$folder/bin:$PATH

# answer PROGRAM COMMAND: what the program does from now on.
answer() {
    printf '#!/bin/sh\n%s\n' "$2" >"$folder/bin/$1"
    chmod 755 "$folder/bin/$1"
}

# expect API WHERE [VARIABLE]: what the script prints with this value of TK_ENGINE_API.
expect() {
    local api
    api=$(TK_ENGINE_API=${3:-} "$script")
    [ "$api" = "$1" ] || { printf '%s: %s instead of %s\n' "$2" "$api" "$1" >&2; exit 1; }
}

answer pkg-config '[ "$*" = "--exists webkit2gtk-4.0" ]'
answer apt-cache 'exit 100'
expect 4.0 "installed"
expect 4.1 "installed, but the other is asked for" 4.1

answer pkg-config 'exit 1'
answer apt-cache '[ "$*" = "show libwebkit2gtk-4.0-dev" ] && echo "Package: libwebkit2gtk-4.0-dev"'
expect 4.0 "to be had"

answer apt-cache 'echo "E: No packages found" >&2; exit 100'
expect 4.1 "not to be had"
expect 4.0 "not to be had, but asked for" 4.0

message=$(TK_ENGINE_API=5.0 "$script" 2>&1) && exit 1
grep -qF 'TK_ENGINE_API must be 4.0 or 4.1' <<<"$message"
