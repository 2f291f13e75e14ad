#!/usr/bin/env bash
# Installs what is missing, builds everything and runs the whole test suite.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/env.sh"
bash "$ZOLK_ROOT/scripts/install-deps.sh"
zolk_configure_and_build
ctest --test-dir "$ZOLK_BUILD" --output-on-failure -j"$(nproc)"
