#!/usr/bin/env bash
# Builds everything and runs the whole test suite twice: first under AddressSanitizer,
# UndefinedBehaviorSanitizer and LeakSanitizer (all but the installed-package check, whose
# consumer is not instrumented), then in the normal build, ending with ctest's summary.
# Between them, the tests that run threads (the package cache and the service) run once more
# under ThreadSanitizer, in a tree that builds only the library and those tests.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
cd "$root"
bash scripts/setup.sh

mkdir -p build-asan build-tsan build
bash scripts/build.sh build-asan -DRADIOSIM_SANITIZE=ON -DRADIOSIM_BUILD_BENCHMARKS=OFF
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
    ctest --test-dir build-asan --output-on-failure -j 2 -E '^install_'

tsan_tests='^(packages_tst_signalpackagecache|service_)'
cmake -S "$root" -B build-tsan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DRADIOSIM_SANITIZE_THREAD=ON -DRADIOSIM_BUILD_BENCHMARKS=OFF > build-tsan.configure.log 2>&1 \
    || { cat build-tsan.configure.log; exit 1; }
mapfile -t tsan_targets < <(ctest --test-dir build-tsan -N -R "$tsan_tests" | sed -n 's/^ *Test *#[0-9]*: //p')
cmake --build build-tsan -j "$(nproc)" --target "${tsan_targets[@]}"
TSAN_OPTIONS="suppressions=$root/tests/tsan.supp halt_on_error=1 second_deadlock_stack=1" \
    ctest --test-dir build-tsan --output-on-failure -j 2 -R "$tsan_tests"

bash scripts/build.sh build
ctest --test-dir build --output-on-failure -j 2
