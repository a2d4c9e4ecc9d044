#!/usr/bin/env bash
# Sets up, builds and starts Tarvelix with its demo project. Without a programmer attached the
# programmer simulator is started on the default link, so the demo has something to talk to.
# With a display the main window opens; without one the demo runs in the command-line runner.
# Any arguments are passed on to tarvelix.
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/deps.sh
cmake -S . -B build/release -DCMAKE_BUILD_TYPE=Release -DTARVELIX_BUILD_TESTS=OFF -DTARVELIX_BUILD_BENCH=OFF
cmake --build build/release -j "$(nproc)"
bin=build/release/bin

sim_pid=""
if [ ! -e /tmp/tarvelix-sim ]; then
    chip_args=()
    demo_chip=$(sed -n 's/^demo_chip=//p' data/projects/demo.cfg 2>/dev/null || true)
    [ -n "$demo_chip" ] && chip_args=(--chip "$demo_chip" --devices "$bin/devices")
    "$bin/tarvelix-progsim" --link /tmp/tarvelix-sim "${chip_args[@]}" >/dev/null &
    sim_pid=$!
    trap '[ -n "$sim_pid" ] && kill "$sim_pid" 2>/dev/null || true' EXIT
    for _ in $(seq 50); do [ -e /tmp/tarvelix-sim ] && break; sleep 0.1; done
fi

if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] && [ -z "${TARVELIX_NO_GUI:-}" ]; then
    "$bin/tarvelix" "$@" "$bin/projects/demo.prj"
else
    echo "No display: running the demo project in the command-line runner."
    "$bin/tarvelix" --run "$bin/projects/demo.prj" --continue-pauses "$@"
fi
