#!/bin/bash
# Installs the build below a folder of its own, and compares the whole list of what came.
#   installs-every-file-in-its-place.sh BUILD_FOLDER INSTALL_ROOT
set -euo pipefail
build=$1
root=$2

stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
DESTDIR=$stage cmake --install "$build" >/dev/null

diff - <(cd "$stage$root" && find . -type f -printf '%m %p\n' | sort -k 2) <<'LIST'
755 ./bin/tkwebhelper
644 ./l10n/cs/LC_MESSAGES/Tunnelkeep.mo
644 ./l10n/de/LC_MESSAGES/Tunnelkeep.mo
644 ./l10n/es/LC_MESSAGES/Tunnelkeep.mo
644 ./l10n/fr/LC_MESSAGES/Tunnelkeep.mo
644 ./l10n/it/LC_MESSAGES/Tunnelkeep.mo
644 ./l10n/ja/LC_MESSAGES/Tunnelkeep.mo
644 ./l10n/ko/LC_MESSAGES/Tunnelkeep.mo
644 ./l10n/pl/LC_MESSAGES/Tunnelkeep.mo
644 ./l10n/pt-br/LC_MESSAGES/Tunnelkeep.mo
644 ./l10n/ru/LC_MESSAGES/Tunnelkeep.mo
644 ./l10n/zh-cn/LC_MESSAGES/Tunnelkeep.mo
644 ./l10n/zh-hk/LC_MESSAGES/Tunnelkeep.mo
644 ./l10n/zh-mo/LC_MESSAGES/Tunnelkeep.mo
644 ./l10n/zh-sg/LC_MESSAGES/Tunnelkeep.mo
644 ./l10n/zh-tw/LC_MESSAGES/Tunnelkeep.mo
644 ./resources/vpnui128.png
LIST
# Nothing stands outside the root.
diff - <(cd "$stage" && find . -type f ! -path ".$root/*") </dev/null
