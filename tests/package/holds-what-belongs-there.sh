#!/bin/bash
# Looks into the packages: their files, what the program needs, where its debug symbols are.
#   holds-what-belongs-there.sh PACKAGE_FOLDER
set -euo pipefail

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
dpkg-deb --extract "$1"/tunnelkeep-webhelper_*.deb "$folder/program"
dpkg-deb --extract "$1"/tunnelkeep-webhelper-dbgsym_*.deb "$folder/symbols"
program=$folder/program/opt/velto/tunnelkeep/bin/tkwebhelper

# The list of all catalogues is that of the installation.
diff - <(cd "$folder/program" && find . -type f ! -path '*/l10n/*' -printf '%m %p\n' |
    sort -k 2) <<'LIST'
755 ./opt/velto/tunnelkeep/bin/tkwebhelper
644 ./opt/velto/tunnelkeep/resources/vpnui128.png
644 ./usr/share/applications/tkwebhelper.desktop
644 ./usr/share/doc/tunnelkeep-webhelper/changelog.Debian.gz
644 ./usr/share/doc/tunnelkeep-webhelper/changelog.gz
644 ./usr/share/doc/tunnelkeep-webhelper/copyright
644 ./usr/share/doc/tunnelkeep-webhelper/protocol.md
644 ./usr/share/doc/tunnelkeep-webhelper/troubleshooting.md
644 ./usr/share/lintian/overrides/tunnelkeep-webhelper
644 ./usr/share/man/man1/tkwebhelper.1.gz
644 ./usr/share/tunnelkeep-webhelper/apparmor-profile
LIST
cmp "$(dirname "$0")/../../resources/vpnui128.png" \
    "$folder/program/opt/velto/tunnelkeep/resources/vpnui128.png"

# The desktop entry gives its icon to the windows of this class, and starts nothing from a menu.
entry=$folder/program/usr/share/applications/tkwebhelper.desktop
grep -qxF 'StartupWMClass=tkwebhelper' "$entry"
grep -qxF 'NoDisplay=true' "$entry"
for key in Exec Icon; do
    [ -e "$folder/program$(sed -n "s/^$key=//p" "$entry")" ]
done

version=$(dpkg-deb --field "$1"/tunnelkeep-webhelper_*.deb Version)
zgrep -qF "\"Tunnelkeep ${version%-1}\"" "$folder/program/usr/share/man/man1/tkwebhelper.1.gz" ||
    { echo "the manual page is not of $version" >&2; exit 1; }

depends=$(dpkg-deb --field "$1"/tunnelkeep-webhelper_*.deb Depends)
for needed in libwebkit2gtk libgtk-3-0 libboost-thread glib-networking ca-certificates; do
    [[ $depends == *"$needed"* ]] || { echo "no dependency on $needed: $depends" >&2; exit 1; }
done

# Stripped, and found again by the debugger through its build's identity.
sections=$(readelf --wide --section-headers "$program")
[[ $sections != *.debug_info* && $sections != *.symtab* ]] || { echo "not stripped" >&2; exit 1; }
identity=$(readelf --notes "$program" | sed -n 's/.*Build ID: //p')
symbols=$folder/symbols/usr/lib/debug/.build-id/${identity:0:2}/${identity:2}.debug
readelf --wide --section-headers "$symbols" | grep -q '\.debug_info'
