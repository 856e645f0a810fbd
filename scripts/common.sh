# Shared by the scripts beside it; to be sourced. Announces steps, and tells which one failed.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
current_step=""
configure_options=()

# step TEXT: announces what comes next.
step() {
    current_step=$1
    printf '\n==> %s\n' "$current_step"
}

# fail TEXT: ends the script with one clear line.
fail() {
    printf '\n%s: FAILED: %s\n' "$(basename "$0")" "$1" >&2
    exit 1
}

# build PRESET [TARGET...]: configures and builds, with Ninja's own progress; everything when no
# target is named, with configure_options on top of the preset's. Configuring says a lot that nobody
# needs, so it is shown only when it fails.
build() {
    local preset=$1 log
    shift
    step "Configure ($preset)"
    log=$(mktemp)
    if ! (cd "$root" && cmake --preset "$preset" "${configure_options[@]}") >"$log" 2>&1; then
        cat "$log"
        rm -f "$log"
        fail "$current_step"
    fi
    rm -f "$log"
    step "Build ($preset)"
    cmake --build "$root/build/$preset" ${1:+--target "$@"} || fail "$current_step"
}

# run_suites PRESET [OPTION...]: the tests of a build, several at a time; all, unless ctest's options
# choose some. A test that waits leaves its processor to another.
run_suites() {
    step "Tests ($1)"
    (cd "$root" && ctest --preset "$1" -j "$(($(nproc) + 1))" "${@:2}") || fail "$current_step"
}
