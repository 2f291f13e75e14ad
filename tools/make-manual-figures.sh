#!/usr/bin/env bash
# Draws the manual's figures (docs/manual/*.png) from renders of the built plug-in.
# Installs what drawing needs (Debian's python3-matplotlib), builds zolk-render if
# needed, then runs tools/manual-figures.py. Look at every figure before committing.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/../scripts/env.sh"
bash "$ZOLK_ROOT/scripts/install-deps.sh" manual
[ -x "$ZOLK_BUILD/app/zolk-render" ] || {
  cmake -S "$ZOLK_ROOT" -B "$ZOLK_BUILD" -G Ninja -DCMAKE_BUILD_TYPE=Release
  cmake --build "$ZOLK_BUILD" -j"$(nproc)" --target zolk-render
}
# Debian's own interpreter: the one that sees python3-matplotlib.
/usr/bin/python3 "$ZOLK_ROOT/tools/manual-figures.py" "$ZOLK_BUILD/app/zolk-render" "$ZOLK_ROOT/docs/manual"
