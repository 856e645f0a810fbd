#!/bin/bash
# Measures how fast and how small the program is, next to what it is compared with. It builds in
# Release, measures in turn, prints tables of medians and ratios, and writes them to
# docs/performance.md. It needs a quiet machine and half an hour.
#
#   scripts/bench.sh              everything
#   scripts/bench.sh NAME...      some of: bus catalog catalog_again catalog_load hand_over idle
#                                 ipc_socket ipc_stages log lookup_parts memory operations shares
#                                 start string; writes no file
#
# TK_BENCH_ROUNDS (15) is how often each thing is measured.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

rounds=${TK_BENCH_ROUNDS:-15}
functions=(catalog_again catalog catalog_load lookup_parts log ipc_stages hand_over ipc_socket string)
processes=(start bus operations shares idle memory)
names=("$@")
[ $# -gt 0 ] || names=("${processes[@]}" "${functions[@]}")
command_line="scripts/bench.sh${*:+ $*}"
programs=$root/build/release/bench
samples=$(mktemp -d)
trap 'rm -rf "$samples"' EXIT

# version PACKAGE: as Debian installed it.
version() {
    dpkg-query -W -f='${Version}' "$1"
}

describe_machine() {
    printf -- '- Processor: %s, %s processors\n' \
        "$(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -1)" "$(nproc)"
    printf -- '- WebKitGTK %s, GTK %s, GLib %s, C library %s, g++ %s\n' \
        "$(version libwebkit2gtk-4.0-37)" "$(version libgtk-3-0)" "$(version libglib2.0-0)" \
        "$(version libc6)" "$(g++ -dumpfullversion)"
    printf -- '- Command: `%s`, %s rounds; each figure is a median\n' "$command_line" "$rounds"
}

# run NAME: one program's samples.
run() {
    case " ${functions[*]} " in
        *" $1 "*)
            "$programs/$1_benchmarks" --benchmark_repetitions="$rounds" \
                --benchmark_enable_random_interleaving=true --benchmark_min_time=0.05 \
                --benchmark_out="$samples/$1.json" --benchmark_out_format=json \
                >/dev/null 2>"$samples/messages" || { cat "$samples/messages" && false; }
            ;;
        *)
            "$programs/$1_benchmarks" --rounds "$rounds" >"$samples/$1.tsv"
            ;;
    esac
}

"$root/scripts/install-deps.sh" --bench || exit 1
build release "${names[@]/%/_benchmarks}"
files=()
for name in "${names[@]}"; do
    step "Measure: $name"
    run "$name" || fail "$current_step"
    files+=("$samples/$name".*)
done
{
    printf '# Performance\n\n'
    describe_machine
    "$root/bench/tabulate.py" "${files[@]}" || fail "tables"
} >"$samples/performance.md"
cat "$samples/performance.md"
if [ $# -eq 0 ]; then
    cat "$samples/performance.md" "$root/bench/notes.md" >"$root/docs/performance.md"
    printf '\nbench.sh: written to docs/performance.md\n'
fi
