#!/bin/bash
# Takes a picture of the display once the demo's page shows on it: take-picture.sh FILE.png
#
# The page reports that it has painted itself a moment before the display shows it. The page's
# background is dark in the upper left corner, where the empty window is white.
set -euo pipefail

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The red value of the first pixel. A raw picture has it after three header lines.
corner_red() {
    scrot --overwrite "$work/now.ppm"
    tail -n +4 "$work/now.ppm" | head -c 1 | od -An -tu1
}

until [ "$(corner_red)" -lt 128 ]; do
    sleep 0.1
done
scrot --overwrite "$1"
