#!/usr/bin/env bash
# Set-up from nothing: installs what is missing, builds, and plays the first 60 s of the built-in
# default scenario with the radiosim tool, paced to the wall clock.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
cd "$root"
bash scripts/setup.sh
mkdir -p build
bash scripts/build.sh build
build/apps/radiosim/radiosim play --to 60000 --speed 1
