#!/bin/bash
# Installs the Debian packages that are missing. Does nothing if none is missing.
#
#   scripts/install-deps.sh              what the program and the demo need
#   scripts/install-deps.sh --package    what packing needs as well
#   scripts/install-deps.sh --tests      ... and what the tests need
#   scripts/install-deps.sh --coverage   ... and what the report of their coverage needs
#   scripts/install-deps.sh --bench      ... and what the benchmarks compare the program with
#   scripts/install-deps.sh --sanitizers ... or what runs them under valgrind
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

packages=(
    # to build
    build-essential cmake gettext ninja-build pkg-config
    libgtk-3-dev libwebkit2gtk-4.0-dev libsoup2.4-dev
    libboost-dev libboost-system-dev libboost-thread-dev libcli11-dev
    # to run: HTTPS needs GLib's TLS module
    ca-certificates glib-networking
    # to show the window without a display, and to take its picture
    fonts-dejavu-core scrot xvfb
)
package_packages=(debhelper lintian)
test_packages=(
    "${package_packages[@]}" apparmor fakeroot groff-base
    # the engine's newer API, which is tested beside the other
    libwebkit2gtk-4.1-dev libsoup-3.0-dev
    libbenchmark-dev libgmock-dev libgtest-dev dbus-bin dbus-daemon
    libnss-wrapper libpng-dev libssl-dev libxcb-xtest0-dev libxcb1-dev locales openssl
    at-spi2-core gir1.2-atspi-2.0 python3 python3-gi weston
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

# Prints the packages that are not installed.
missing_packages() {
    local installed
    installed=$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' "${packages[@]}" 2>/dev/null |
        sed -n 's/^installed //p' | sort -u) || true
    comm -23 <(printf '%s\n' "${packages[@]}" | sort -u) <(printf '%s\n' "$installed")
}

command -v apt-get >/dev/null && command -v dpkg-query >/dev/null ||
    fail "this needs Debian's package manager; install: ${packages[*]}"

mapfile -t missing < <(missing_packages)
if [ ${#missing[@]} -eq 0 ]; then
    step "Dependencies: all installed"
    exit 0
fi

step "Install dependencies: ${missing[*]}"
as_root=()
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null || ! { [ -t 0 ] || sudo -n true 2>/dev/null; }; then
        printf 'Neither root nor sudo. Run this as root, then try again:\n' >&2
        printf '  apt-get update && apt-get install -y --no-install-recommends %s\n' \
            "${missing[*]}" >&2
        exit 1
    fi
    as_root=(sudo)
fi
"${as_root[@]}" apt-get update || fail "apt-get update"
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y --no-install-recommends "${missing[@]}" || fail "apt-get install"
