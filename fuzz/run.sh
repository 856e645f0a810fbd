#!/bin/bash
# Fuzzes one target: run.sh PROGRAM NAME SECONDS
#
# Starts from the files in the tree. Inputs that reach more code are kept in the build folder, in
# corpus/NAME beside the program. Inputs that crash the program are kept in findings/NAME.
set -euo pipefail

program=$1
name=$2
seconds=$3
tree=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
build=$(cd "$(dirname "$program")" && pwd)

corpora=("$build/corpus/$name" "$tree/corpus/$name")
if [ -d "$tree/crashes/$name" ]; then
    corpora+=("$tree/crashes/$name")
fi
# Documents are at most a quarter of what the transport takes, because unwinding from deep ones is
# slow in this build.
case $name in
    *_json | log_configuration) longest=512 ;;
    *) longest=4096 ;;
esac
options=(
    -max_total_time="$seconds"
    -max_len="$longest"
    # Slow inputs, such as long ones, are tried less often.
    -entropic_scale_per_exec_time=1
    -timeout=30
    -artifact_prefix="$build/findings/$name/"
    -print_final_stats=1
)
if [ -f "$tree/dictionaries/$name.dict" ]; then
    options+=(-dict="$tree/dictionaries/$name.dict")
fi
mkdir -p "$build/corpus/$name" "$build/findings/$name"
exec "$program" "${options[@]}" "${corpora[@]}"
