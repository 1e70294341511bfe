#!/usr/bin/env bash
# Builds everything and runs the whole test suite twice: first under AddressSanitizer,
# UndefinedBehaviorSanitizer and LeakSanitizer (all but the installed-package check, whose
# consumer is not instrumented), then in the normal build, ending with ctest's summary.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
cd "$root"
bash scripts/setup.sh

mkdir -p build-asan build
bash scripts/build.sh build-asan -DRADIOSIM_SANITIZE=ON -DRADIOSIM_BUILD_BENCHMARKS=OFF
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
    ctest --test-dir build-asan --output-on-failure -j 2 -E '^install_'

bash scripts/build.sh build
ctest --test-dir build --output-on-failure -j 2
