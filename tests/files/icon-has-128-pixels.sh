#!/bin/bash
# Reads the head of a PNG file: its signature, and the width and height that follow.
#   icon-has-128-pixels.sh FILE
set -euo pipefail

diff - <(head --bytes 24 "$1" | od -An -tx1) <<'BYTES'
 89 50 4e 47 0d 0a 1a 0a 00 00 00 0d 49 48 44 52
 00 00 00 80 00 00 00 80
BYTES
