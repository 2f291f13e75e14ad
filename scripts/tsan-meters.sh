#!/usr/bin/env bash
# ThreadSanitizer run of the meter channel and the DSP swap, outside the normal
# build and CI: bash scripts/tsan-meters.sh [blocks]
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
OUT="$ROOT/tsan-build"
mkdir -p "$OUT"

SOURCES=(
  scripts/tsan/MeterMessagingStress.cpp
  meters/MeterMessaging.cpp
  toolkit/HVNVec.cpp toolkit/HVNArray.cpp toolkit/HVNAudioBuffer.cpp toolkit/HVNCircularBuffer.cpp
  toolkit/HVNEasingFloat.cpp toolkit/HVNSRC.cpp
  dsp/HVNAbstractDSP.cpp dsp/HVNZC1DSP.cpp
  core/HVNPublicDSP.cpp core/HVNBypassFader.cpp core/HVNRebuildWorker.cpp
)

cd "$ROOT"
g++ -std=c++17 -O1 -g -fsanitize=thread -pthread -Wall -Wextra -Werror -I"$ROOT" \
  "${SOURCES[@]}" -o "$OUT/meter-stress"
TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1" "$OUT/meter-stress" "${1:-200000}"
