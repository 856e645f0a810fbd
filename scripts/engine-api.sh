#!/bin/bash
# Prints the engine's API that scripts and CMake build with: the one in TK_ENGINE_API, else 4.0
# where the system has it, installed or not, else 4.1.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

has_older_api() {
    pkg-config --exists webkit2gtk-4.0 || apt-cache show libwebkit2gtk-4.0-dev
}

case ${TK_ENGINE_API:-} in
    4.0 | 4.1) printf '%s\n' "$TK_ENGINE_API" ;;
    "") if has_older_api >/dev/null 2>&1; then printf '4.0\n'; else printf '4.1\n'; fi ;;
    *) fail "TK_ENGINE_API must be 4.0 or 4.1" ;;
esac
