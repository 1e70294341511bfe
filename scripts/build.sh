#!/usr/bin/env bash
# Configures and builds one tree. Usage: build.sh <build-dir> [extra cmake arguments...]
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
dir="$1"
shift
cmake -S "$root" -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" > "$dir.configure.log" 2>&1 \
    || { cat "$dir.configure.log"; exit 1; }
cmake --build "$dir" -j "$(nproc)"
