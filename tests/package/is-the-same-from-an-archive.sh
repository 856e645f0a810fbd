#!/bin/bash
# Packs the same build with sources that are no clone but have the date of the commit, as an archive
# gives them. Compares the packages byte for byte. A git that is asked nevertheless gives another
# date: that of a clone in which the archive was unpacked.
#   is-the-same-from-an-archive.sh BUILD_FOLDER PACKAGE_FOLDER
set -euo pipefail
root=$(realpath "$(dirname "$0")/../..")

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
dpkg-deb --extract "$2"/tunnelkeep-webhelper_*.deb "$folder/packed"
mkdir "$folder/archive" "$folder/bin" "$folder/again"
cp -r "$root"/{CHANGELOG.md,docs,packaging,scripts} "$folder/archive"
find "$folder/archive" -exec \
    touch --reference="$folder/packed/usr/share/doc/tunnelkeep-webhelper/copyright" {} +
printf '#!/bin/sh\necho 1\n' >"$folder/bin/git"
chmod 755 "$folder/bin/git"

PATH=$folder/bin:$PATH "$folder/archive/packaging/pack.sh" "$1" "$folder/again" >/dev/null
diff --recursive "$2" "$folder/again"
