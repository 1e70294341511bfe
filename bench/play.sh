#!/usr/bin/env bash
# radiosim play over the whole default scenario (600 s) to /dev/null, in each format, against
# radiosim check on the same scenario: the same start (default library unpacked, cache prepared,
# scenario read and checked) with nothing played. Five runs each, pinned to one core; prints the
# median wall time and the real-time factor. Usage: play.sh [build-dir] (default build).
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
tool="${1:-$root/build}/apps/radiosim/radiosim"

median() { sort -n | sed -n 3p; }
measure() {
    for _ in 1 2 3 4 5; do
        start=$(date +%s%N)
        taskset -c 1 "$tool" "$@" > /dev/null
        echo $(( ($(date +%s%N) - start) / 1000000 ))
    done | median
}

base=$(measure check)
echo "check (start, no play): ${base} ms"
for format in table csv json; do
    ms=$(measure play --format "$format")
    echo "play --format $format: ${ms} ms, $(( 600000 / ms ))x real time;" \
        "without the start: $(( 600000 / (ms > base ? ms - base : 1) ))x"
done
