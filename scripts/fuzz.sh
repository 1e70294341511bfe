#!/usr/bin/env bash
# Runs one libFuzzer target of a fuzz build in one process, at low priority, for a given time.
# The corpus grows in the build tree from the committed seeds and regression inputs; findings
# land in <build-dir>/fuzz/findings/<target>/.
# Usage: fuzz.sh <build-dir> <target> [seconds, default 600] [more libFuzzer options...]
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
dir="$(cd "$1" && pwd)"
name="$2"
seconds="${3:-600}"
shift $(($# < 3 ? $# : 3))
corpus="$dir/fuzz/corpus/$name"
findings="$dir/fuzz/findings/$name"
mkdir -p "$corpus" "$findings"
mapfile -t options < "$dir/fuzz/fuzz_$name.args"
inputs=("$corpus" "$root/fuzz/seeds/$name")
[ -d "$root/fuzz/regressions/$name" ] && inputs+=("$root/fuzz/regressions/$name")
# No input of a few kilobytes needs a single allocation of 128 MB: a larger one is reported as
# the amplification it is.
exec nice -n 10 "$dir/fuzz/fuzz_$name" "${options[@]}" -max_total_time="$seconds" -timeout=10 \
    -rss_limit_mb=2048 -malloc_limit_mb=128 -print_final_stats=1 -artifact_prefix="$findings/" \
    "$@" "${inputs[@]}"
