#!/bin/bash
# Gives the package's AppArmor profile to the distribution's parser, and lets the package install it.
#   has-a-profile-that-grants-user-namespaces.sh PACKAGE_FOLDER
set -euo pipefail

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
dpkg-deb --extract "$1"/tunnelkeep-webhelper_*.deb "$folder/program"
dpkg-deb --control "$1"/tunnelkeep-webhelper_*.deb "$folder/control"
profile=$folder/program/usr/share/tunnelkeep-webhelper/apparmor-profile

# parse FILE: whether the parser takes it, without a word to the kernel.
parse() {
    PATH=$PATH:/usr/sbin apparmor_parser --skip-kernel-load --skip-cache "$1"
}

grep -q '^profile tkwebhelper /opt/velto/tunnelkeep/bin/tkwebhelper flags=(unconfined) {$' "$profile"
[ "$(sed -n '/{$/,/^}/p' "$profile" | grep -c '^  userns,$')" -eq 1 ]
[ -x "$folder/program/opt/velto/tunnelkeep/bin/tkwebhelper" ]

# A parser before 4.0 knows all but the grant itself.
printf 'profile known {\n  userns,\n}\n' >"$folder/grant"
if parse "$folder/grant" 2>/dev/null; then
    parse "$profile"
else
    sed '/^abi /d; /^  userns,$/d' "$profile" >"$folder/rest"
    parse "$folder/rest"
fi

# Installing asks the parser first: what it refuses never gets among the profiles of the machine.
export DPKG_ROOT=$folder/program
installed=$DPKG_ROOT/etc/apparmor.d/tkwebhelper
mkdir -p "$folder/bin" "$(dirname "$installed")"
# install_with STATUS: the package's script with a parser that answers so.
install_with() {
    printf '#!/bin/sh\nexit %s\n' "$1" >"$folder/bin/apparmor_parser"
    chmod 755 "$folder/bin/apparmor_parser"
    PATH=$folder/bin:$PATH sh "$folder/control/postinst" configure
}
install_with 1
[ ! -e "$installed" ]
install_with 0
cmp "$profile" "$installed"
sh "$folder/control/prerm" remove
[ ! -e "$installed" ]
