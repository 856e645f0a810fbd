#!/bin/bash
# Packs a release build into Debian packages: the program's, and its debug symbols.
#
#   packaging/pack.sh BUILD_FOLDER OUTPUT_FOLDER
#
# The same build gives the same packages, byte for byte. Their date is SOURCE_DATE_EPOCH, or that of
# the last commit, or that of the sources if they are no clone: an archive gives its files the date of
# its commit.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/../scripts/common.sh"
build=$(realpath "$1")
output=$2

# source_date: in seconds since 1970. A folder above the sources may be a clone of something else.
source_date() {
    { [ -e "$root/.git" ] && git -C "$root" log -1 --format=%ct 2>/dev/null; } ||
        stat --format=%Y "$root/CHANGELOG.md"
}

SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(source_date)}
export SOURCE_DATE_EPOCH TK_SOURCE=$root TK_BUILD=$build

# write_changelog: prints the package's own changelog. What users notice is in the other one.
write_changelog() {
    local version maintainer
    version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
    maintainer=$(sed -n 's/^Maintainer: //p' "$root/packaging/debian/control")
    cat <<CHANGELOG
tunnelkeep-webhelper ($version-1) stable; urgency=medium

  * Version $version of the program: see changelog.gz.

 -- $maintainer  $(date --utc --rfc-email --date="@$SOURCE_DATE_EPOCH")
CHANGELOG
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/tree"
cp -r "$root/packaging/debian" "$work/tree/debian"
write_changelog >"$work/tree/debian/changelog"

step "Pack"
(cd "$work/tree" && dpkg-buildpackage --build=binary --no-sign) >"$work/log" 2>&1 || {
    cat "$work/log"
    fail "$current_step"
}
mkdir -p "$output"
rm -f "$output"/*.deb
cp "$work"/*.deb "$output"
ls -l "$output"
