#!/bin/bash
# Draws the icon's picture again from its vector source (with rsvg-convert, of librsvg2-bin).
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cd "$root/resources"

rsvg-convert --width 128 --height 128 --output vpnui128.png vpnui128.svg
