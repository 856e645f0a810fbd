#!/bin/bash
# Tests what is committed as newcomers and packagers meet it, in a bare Debian that it makes with
# debootstrap and removes at the end.
#
#   scripts/test-on.sh SUITE            on bookworm, trixie or sid, all of these:
#   scripts/test-on.sh SUITE STAGE...   demo     the first command of the README
#                                       test     the second one
#                                       package  packing with lintian, and in another bare system
#                                                installation, a sign-in and removal
#
# Needs root and debootstrap, half an hour on two processors and 6 GB in TMPDIR, by default /var/tmp.
# Packages come from where this system takes its own. This system's apt also says which proxy there
# is, and whether lists may have expired: APT_CONFIG can name a file with such options.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

[ $# -gt 0 ] || fail "no suite named"
suite=$1
stages=("${@:2}")
[ $# -gt 1 ] || stages=(demo test package)
for stage in "${stages[@]}"; do
    [[ $stage =~ ^(demo|test|package)$ ]] || fail "unknown stage: $stage"
done
[ "$(id -u)" -eq 0 ] || fail "needs root"
command -v debootstrap >/dev/null || fail "needs debootstrap"

work=$(mktemp -d -p "${TMPDIR:-/var/tmp}")
trap 'rm -rf --one-file-system "$work"' EXIT

# mirror LABEL FALLBACK: where this system takes the packages of Debian's archive from. Over http,
# because a bare system knows no certificate; apt checks signatures.
mirror() {
    local found
    mapfile -t found < <(apt-get indextargets --format '$(REPO_URI)' 'Origin: Debian' "Label: $1" |
        grep '^http:')
    printf '%s\n' "${found[0]:-$2}"
}

# make_system FOLDER: a bare system that knows its packages, and how to reach them.
make_system() {
    local archive security
    archive=$(mirror Debian http://deb.debian.org/debian)
    security=$(mirror Debian-Security http://deb.debian.org/debian-security)
    step "Make a bare $suite of $archive"
    debootstrap --variant=minbase "$suite" "$1" "$archive" >"$work/debootstrap.log" 2>&1 || {
        cat "$work/debootstrap.log"
        fail "$current_step"
    }
    # The folder is the system's /.
    chmod 755 "$1"
    printf 'deb %s %s main\n' "$archive" "$suite" >"$1/etc/apt/sources.list"
    [ "$suite" = sid ] ||
        printf 'deb %s %s-security main\n' "$security" "$suite" >>"$1/etc/apt/sources.list"
    apt-config dump Acquire::http Acquire::https Acquire::Check-Valid-Until Acquire::Check-Date \
        >"$1/etc/apt/apt.conf.d/99test-on" 2>/dev/null || true
    cp /etc/resolv.conf /etc/hosts "$1/etc"
}

# run_in FOLDER COMMAND...: runs a command in that system's /root. The system has namespaces of its
# own, and its / is a mount point as on a machine: without, the engine's sandbox would not work.
run_in() {
    local proxies
    mapfile -t proxies < <(env | grep -iE '^(https?|no)_proxy=')
    # shellcheck disable=SC2016 # for the shell in the namespaces
    unshare --mount --pid --ipc --fork --kill-child --propagation private \
        env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root TERM=dumb LANG=C.UTF-8 "${proxies[@]}" \
        bash -euc '
            mount --bind "$0" "$0"
            cd "$0"
            mount -t proc proc proc
            mount --rbind /sys sys
            mount --rbind /dev dev
            pivot_root . mnt
            umount --lazy /mnt
            cd /root
            # Not as the first process of all, to which no X server tells that it is ready.
            "$@"
            exit 0' "$@"
}

show_versions() {
    step "Versions on $suite"
    # shellcheck disable=SC2016 # fields of the query
    run_in "$work/builder" dpkg-query -W -f='${Package} ${Version}\n' \
        'libwebkit2gtk-4.?-dev' 'libsoup*[0-9]-dev' g++ libboost-dev cmake
}

# What a person does with the package who never built anything.
install_sign_in_and_remove() {
    run_in "$work/builder" cmake --build project/build/program --target tkagent ||
        fail "$current_step"
    step "Install the package in another bare $suite"
    cp "$work/builder/root/project/build/packages"/tunnelkeep-webhelper_*.deb \
        "$work/builder/root/project/build/program/bin/tkagent" "$work/user/root"
    run_in "$work/user" apt-get update || fail "$current_step"
    run_in "$work/user" env DEBIAN_FRONTEND=noninteractive \
        bash -c 'apt-get install -y --no-install-recommends ./*.deb' || fail "$current_step"
    step "Sign in with what was installed"
    run_in "$work/user" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y --no-install-recommends xauth xvfb || fail "$current_step"
    run_in "$work/user" xvfb-run ./tkagent demo --unattended --timeout 120 \
        --helper /opt/velto/tunnelkeep/bin/tkwebhelper || fail "$current_step"
    step "Remove it"
    run_in "$work/user" apt-get purge -y tunnelkeep-webhelper || fail "$current_step"
    run_in "$work/user" find / -xdev \( -path /root -o -path /proc -o -path /sys \) -prune -o \
        \( -name '*tunnelkeep*' -o -name '*tkwebhelper*' -o -name velto \) -print >"$work/left"
    [ ! -s "$work/left" ] || fail "left behind: $(cat "$work/left")"
}

make_system "$work/builder"
cp -a "$work/builder" "$work/user"
git clone --quiet "$root" "$work/builder/root/project" || fail "clone"
for stage in "${stages[@]}"; do
    run_in "$work/builder" "project/scripts/$stage.sh" || fail "$stage on $suite"
    [ "$stage" != package ] || install_sign_in_and_remove
done
show_versions
printf '\ntest-on.sh: %s is well on %s\n' "${stages[*]}" "$suite"
