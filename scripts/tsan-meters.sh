#!/usr/bin/env bash
# ThreadSanitizer run of the meter channel and the DSP swap, in its own build
# directory, outside the normal build and CI: bash scripts/tsan-meters.sh [blocks]
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/env.sh"
bash "$ZOLK_ROOT/scripts/install-deps.sh"

build="$ZOLK_ROOT/tsan-build"
cmake -S "$ZOLK_ROOT" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZOLK_TSAN=ON -DZOLK_BUILD_BENCH=OFF
cmake --build "$build" -j"$(nproc)" --target zolk_meter_stress
TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1" "$build/tests/zolk_meter_stress" "${1:-200000}"
