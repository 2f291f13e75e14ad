#!/usr/bin/env bash
# Regenerates the embedded artwork: the drawing, its tile images and the fonts.
# The normal build never runs this: it embeds the committed results.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
bash "$root/scripts/install-deps.sh" artwork
src="$root/tools/artwork"
out="$root/resources"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

g++ -std=c++17 -O2 -Wall -Wextra -o "$work/drawgen" "$src/drawgen.cpp" \
  $(pkg-config --cflags --libs harfbuzz freetype2)
"$work/drawgen" "$src" "$out/fonts" "$work/drawing.json"
/usr/bin/python3 "$src/finish.py" "$work/drawing.json" "$out/TQDrawing.json.gz" "$src"
/usr/bin/python3 "$src/make_fonts.py" "$out/fonts"
ls -l "$out/TQDrawing.json.gz" "$out"/fonts/*.ttf
