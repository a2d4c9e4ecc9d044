#!/usr/bin/env bash
# Sets up, builds and starts Tarvelix.
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/deps.sh
cmake -S . -B build/release -DCMAKE_BUILD_TYPE=Release -DTARVELIX_BUILD_TESTS=OFF -DTARVELIX_BUILD_BENCH=OFF
cmake --build build/release -j "$(nproc)"
bin=build/release/bin
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    exec "$bin/tarvelix" "$@"
fi
echo "No display found: showing the command line instead."
exec "$bin/tarvelix" --help
