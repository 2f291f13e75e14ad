#!/usr/bin/env bash
# Runs the libFuzzer targets for a bounded time each (default 60 s), in their own
# clang build directory, adding what they find to the committed corpora:
#   bash scripts/fuzz.sh [SECONDS] [TARGET...]
# Not part of CI; the corpora are replayed by the ordinary test suite.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/env.sh"
bash "$ZOLK_ROOT/scripts/install-deps.sh"

seconds="${1:-60}"
shift || true
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(fuzz_state fuzz_preset_file fuzz_preset_url)

build="$ZOLK_ROOT/fuzz-build"
CC=clang CXX=clang++ cmake -S "$ZOLK_ROOT" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZOLK_FUZZ=ON
cmake --build "$build" -j"$(nproc)" --target "${targets[@]}"

for target in "${targets[@]}"; do
  corpus="$ZOLK_ROOT/fuzz/corpus/${target#fuzz_}"
  mkdir -p "$corpus"
  "$build/fuzz/$target" -max_total_time="$seconds" -max_len=4096 "$corpus"
done
