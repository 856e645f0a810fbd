#!/bin/bash
# Installs the Debian packages that are missing. Does nothing if none is missing.
#
#   scripts/install-deps.sh              what the program and the demo need
#   scripts/install-deps.sh --package    what packing needs as well
#   scripts/install-deps.sh --tests      ... and what the tests need
#   scripts/install-deps.sh --coverage   ... and what the report of their coverage needs
#   scripts/install-deps.sh --bench      ... and what the benchmarks compare the program with
#   scripts/install-deps.sh --sanitizers ... or what runs them under valgrind
#
# The engine's packages are those of the API that scripts/engine-api.sh prints; TK_ENGINE_API chooses
# the other. Without Debian's package manager this only prints what is needed.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

packages=(
    # to build
    build-essential cmake gettext ninja-build pkg-config
    libgtk-3-dev libboost-dev libboost-thread-dev libcli11-dev
    # to run: HTTPS needs GLib's TLS module
    ca-certificates glib-networking
    # to show the window without a display, and to take its picture
    fonts-dejavu-core scrot xvfb
)
older_engine_packages=(libwebkit2gtk-4.0-dev libsoup2.4-dev)
newer_engine_packages=(libwebkit2gtk-4.1-dev libsoup-3.0-dev libgnutls28-dev)
package_packages=(debhelper lintian)
test_packages=(
    "${package_packages[@]}" apparmor fakeroot groff-base
    # the engine's newer API, which is tested beside the older one
    "${newer_engine_packages[@]}"
    libbenchmark-dev libgmock-dev libgtest-dev dbus-bin dbus-daemon
    libnss-wrapper libpng-dev libssl-dev libxcb-xtest0-dev libxcb1-dev locales openssl
    at-spi2-core gir1.2-atspi-2.0 python3 python3-gi weston
    # smart cards: what stands for one, and the headers of its interface
    gnutls-bin libp11-kit-dev softhsm2
    binutils clang clang-format clang-tidy cppcheck git libclang-rt-dev llvm
)

case "${1:-}" in
    "") ;;
    --package) packages+=("${package_packages[@]}") ;;
    --tests) packages+=("${test_packages[@]}") ;;
    --coverage) packages+=("${test_packages[@]}" gcovr) ;;
    --bench) packages+=("${test_packages[@]}" python3 surf) ;;
    --sanitizers) packages+=("${test_packages[@]}" valgrind) ;;
    *) fail "unknown argument: $1" ;;
esac

api=$("$root/scripts/engine-api.sh")

# Prints the packages that are needed.
needed_packages() {
    printf '%s\n' "${packages[@]}"
    case $api in
        4.0) printf '%s\n' "${older_engine_packages[@]}" ;;
        4.1) printf '%s\n' "${newer_engine_packages[@]}" ;;
    esac
}

# Prints those of them that are not installed.
missing_packages() {
    local needed installed
    needed=$(needed_packages | sort -u)
    # shellcheck disable=SC2086 # names
    installed=$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' $needed 2>/dev/null |
        sed -n 's/^installed //p' | sort -u) || true
    comm -23 <(printf '%s\n' "$needed") <(printf '%s\n' "$installed")
}

if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
    step "Dependencies: no Debian package manager. Install what these Debian packages have:"
    needed_packages | sort -u
    exit 0
fi

missing=$(missing_packages)
if [ -z "$missing" ]; then
    step "Dependencies: all installed"
    exit 0
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null || ! { [ -t 0 ] || sudo -n true 2>/dev/null; }; then
        printf 'Neither root nor sudo. Run this as root, then try again:\n' >&2
        printf '  apt-get update && apt-get install -y --no-install-recommends %s\n' \
            "${missing//$'\n'/ }" >&2
        exit 1
    fi
    as_root=(sudo)
fi
step "Update the package lists"
"${as_root[@]}" apt-get update || fail "$current_step"
# The lists may know another API now.
api=$("$root/scripts/engine-api.sh")
mapfile -t missing < <(missing_packages)
step "Install dependencies: ${missing[*]}"
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y --no-install-recommends "${missing[@]}" || fail "apt-get install"
