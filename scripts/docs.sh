#!/usr/bin/env bash
# Copies what the build drew for the documentation into docs/: the timeline of the default
# scenario. Usage: docs.sh [build-dir] (default build).
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${1:-$root/build}"
cmake --build "$build" --target radiosim_timeline_png
mkdir -p "$root/docs"
cp "$build/docs/timeline.png" "$root/docs/timeline.png"
