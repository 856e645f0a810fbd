#!/bin/bash
# Builds the program and packs it for Debian, into build/packages: the program, and its debug
# symbols. Shows the contents of the package and the report of lintian, and fails at any finding
# that has no reason in packaging/debian.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

packages=$root/build/packages

"$root/scripts/install-deps.sh" --package || exit 1
build program tkwebhelper catalogs
"$root/packaging/pack.sh" "$root/build/program" "$packages"

step "Contents"
dpkg-deb --contents "$packages"/tunnelkeep-webhelper_*.deb

step "lintian"
lintian --display-info --pedantic --fail-on pedantic,info,warning,error "$packages"/*.deb ||
    fail "$current_step"
printf '\npackage.sh: packages in %s\n' "$packages"
