# To be sourced by the scripts beside it. Announces steps and reports which one failed.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
current_step=""

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

# build PRESET [TARGET...]: configures, and builds the targets, or everything if none is named. Shows
# the output of Ninja. Shows the output of configuring only if that fails, because it is long and
# rarely needed.
build() {
    local preset=$1 log
    shift
    step "Configure ($preset)"
    log=$(mktemp)
    if ! (cd "$root" && cmake --preset "$preset") >"$log" 2>&1; then
        cat "$log"
        rm -f "$log"
        fail "$current_step"
    fi
    rm -f "$log"
    step "Build ($preset)"
    cmake --build "$root/build/$preset" ${1:+--target "$@"} || fail "$current_step"
}

# run_suites PRESET [OPTION...]: runs the tests of a build, several at a time. Runs all tests unless
# ctest's options choose some. It runs one test more than there are processors, because a test that
# waits leaves its processor to another.
run_suites() {
    step "Tests ($1)"
    (cd "$root" && ctest --preset "$1" -j "$(($(nproc) + 1))" "${@:2}") && return
    # A reader of the log's end would otherwise learn the suite that failed, but not the case.
    grep -A 5 -E ': Failure$|^\[  FAILED  \]' "$root/build/$1/Testing/Temporary/LastTest.log" |
        head -n 40 || true
    fail "$current_step"
}
