#!/usr/bin/env bash
# The main job: installs what is missing, builds everything (plug-ins, renderer,
# tests, benchmarks), installs the factory data, and renders the built-in demo
# through the plug-in, printing the report.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/env.sh"
bash "$ZOLK_ROOT/scripts/install-deps.sh"
zolk_configure_and_build
# The factory presets go to a system folder.
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
$sudo cmake --install "$ZOLK_BUILD"
mkdir -p "$ZOLK_BUILD/renders"
"$ZOLK_BUILD/app/zolk-render" "$@" "$ZOLK_BUILD/renders/demo.wav"
echo "Rendered $ZOLK_BUILD/renders/demo.wav"
