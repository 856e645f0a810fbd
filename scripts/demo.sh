#!/bin/bash
# Builds the program and shows a sign-in through it. On a desktop the window is shown and a person
# signs in. Without a display the window opens on a virtual one, the page fills in the form by
# itself, and build/demo.png shows the window at the form.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

picture=$root/build/demo.png
work=$(mktemp -d)
xvfb=""
cleanup() {
    [ -z "$xvfb" ] || kill "$xvfb" 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT

# The server chooses a free display and prints its number once it takes connections. Its screen has
# the window's size, so that a picture of the screen is a picture of the window.
start_virtual_display() {
    local number
    mkfifo "$work/display"
    Xvfb -displayfd 3 -screen 0 1000x600x24 -nolisten tcp 3>"$work/display" 2>"$work/xvfb.log" &
    xvfb=$!
    if ! read -r -t 30 number <"$work/display"; then
        cat "$work/xvfb.log" >&2
        fail "$current_step"
    fi
    export DISPLAY=:$number
}

"$root/scripts/install-deps.sh" || exit 1
build program tkwebhelper tkagent
tkagent=$root/build/program/bin/tkagent

if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    step "Demo: sign in in the window that opens"
    "$tkagent" demo || fail "$current_step"
    printf '\ndemo.sh: the sign-in succeeded\n'
    exit 0
fi

step "Start a virtual display"
start_virtual_display
printf 'display %s\n' "$DISPLAY"

step "Demo: the page signs in by itself"
rm -f "$picture"
"$tkagent" demo --unattended --timeout 120 --at-form "'$root/scripts/take-picture.sh' '$picture'" ||
    fail "$current_step"
[ -s "$picture" ] || fail "no picture at $picture"
printf '\ndemo.sh: the sign-in succeeded; the window at its form: %s\n' "$picture"
