#!/usr/bin/env bash
# Sets up, builds and runs every test: an address/undefined-sanitizer build of everything, then a
# thread-sanitizer build of the tests labelled "thread" (the model and the worker).
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/deps.sh
jobs=$(nproc)

cmake -S . -B build/asan -DCMAKE_BUILD_TYPE=Debug -DTARVELIX_SANITIZE=address -DTARVELIX_BUILD_BENCH=OFF
cmake --build build/asan -j "$jobs"
(cd build/asan && ASAN_OPTIONS=detect_leaks=0 UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 \
    ctest --output-on-failure -j "$jobs")

cmake -S . -B build/tsan -DCMAKE_BUILD_TYPE=Debug -DTARVELIX_SANITIZE=thread -DTARVELIX_BUILD_BENCH=OFF
tsan_targets=$(cd build/tsan && ctest -N -L thread | sed -n 's/^ *Test *#[0-9]*: //p')
for t in $tsan_targets; do cmake --build build/tsan -j "$jobs" --target "$t"; done
(cd build/tsan && TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1 suppressions=$PWD/../../tools/tsan.supp" ctest --output-on-failure -L thread)
