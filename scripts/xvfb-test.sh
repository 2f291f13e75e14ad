#!/usr/bin/env bash
# Runs a test command on its own virtual X server with GLX, so that editor windows
# and OpenGL work on machines without a display (CI). Skips (exit 0 with a note)
# when xvfb-run is missing.
set -euo pipefail
if ! command -v xvfb-run >/dev/null 2>&1; then
  echo "xvfb-run not installed; editor window tests skipped"
  exit 0
fi
unset DISPLAY
exec xvfb-run -a -s "-screen 0 1600x1000x24 +extension GLX" "$@"
