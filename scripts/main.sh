#!/usr/bin/env bash
# The main job: installs what is missing, builds everything (plug-ins, renderer,
# tests, benchmarks), installs the plug-ins, programs, manual and factory presets
# into the system (cmake --install, prefix /usr/local), and renders the built-in
# demo through the plug-in, printing the report.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/env.sh"
bash "$ZOLK_ROOT/scripts/install-deps.sh"
zolk_configure_and_build
# System folders: root, or sudo.
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
$sudo cmake --install "$ZOLK_BUILD"
mkdir -p "$ZOLK_BUILD/renders"
"$ZOLK_BUILD/app/zolk-render" "$@" "$ZOLK_BUILD/renders/demo.wav"
echo "Rendered $ZOLK_BUILD/renders/demo.wav"
