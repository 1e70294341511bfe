#!/usr/bin/env bash
# Set-up from nothing: installs what is missing, builds, and runs the main job on the
# built-in default data.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
cd "$root"
bash scripts/setup.sh
mkdir -p build
bash scripts/build.sh build
ctest --test-dir build --output-on-failure -R '^units_'
