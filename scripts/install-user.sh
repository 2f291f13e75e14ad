#!/usr/bin/env bash
# Installs the built plug-ins for the current user, without root:
#   ~/.vst3/Zolk Compressor.vst3, ~/.lv2/Zolk Compressor.lv2,
#   ~/.local/bin/zolk-compressor (the Standalone) and zolk-render,
#   ~/.local/share/applications/zolk-compressor.desktop and its icon,
#   ~/.local/share/doc/zolk-compressor (the manual, which "Read About" opens).
# The factory presets need no install here: the plug-in carries them.
#   bash scripts/install-user.sh              install (again) from the build folder
#   bash scripts/install-user.sh --uninstall  remove exactly what was installed
# What was installed is listed in ~/.local/share/zolk-compressor/installed; the
# uninstall removes those files, then those of the folders it made that are empty.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/env.sh"

record_dir="$HOME/.local/share/zolk-compressor"
record="$record_dir/installed"

uninstall() {
  [ -f "$record" ] || { echo "nothing to uninstall (no $record)"; return 0; }
  local entries
  entries="$(cat "$record")"
  rm -f -- "$record"
  # Files first, then the folders this script made, deepest first, when empty.
  grep '^f ' <<<"$entries" | cut -c3- | while IFS= read -r path; do rm -f -- "$path"; done
  grep '^d ' <<<"$entries" | cut -c3- | sort -r | while IFS= read -r path; do rmdir -- "$path" 2>/dev/null || true; done
  echo "Uninstalled Zolk Compressor for $(id -un)"
}

if [ "${1:-}" = "--uninstall" ]; then
  uninstall
  exit 0
elif [ $# -gt 0 ]; then
  echo "usage: $0 [--uninstall]" >&2
  exit 2
fi

artefacts="$ZOLK_BUILD/ZolkCompressor_artefacts/Release"
for built in "$artefacts/VST3/Zolk Compressor.vst3" "$artefacts/LV2/Zolk Compressor.lv2" \
             "$artefacts/Standalone/Zolk Compressor" "$ZOLK_BUILD/app/zolk-render"; do
  [ -e "$built" ] || { echo "not built: $built (run bash scripts/main.sh first)" >&2; exit 1; }
done

# A new install replaces an earlier one, so that the record holds one install only.
[ -f "$record" ] && uninstall >/dev/null

staged=()
# Makes the folders up to $1 that are missing, recording each.
make_dirs() {
  local missing=() d="$1"
  while [ ! -d "$d" ]; do missing=("$d" "${missing[@]}"); d="$(dirname "$d")"; done
  for d in "${missing[@]}"; do mkdir -- "$d"; staged+=("d $d"); done
}
# put SOURCE TARGET [MODE]: copies one file.
put() {
  make_dirs "$(dirname "$2")"
  install -m "${3:-644}" -- "$1" "$2"
  staged+=("f $2")
}
# put_tree FOLDER TARGET: copies a folder's files, keeping their modes.
put_tree() {
  local file rel
  while IFS= read -r -d '' file; do
    rel="${file#"$1"/}"
    make_dirs "$(dirname "$2/$rel")"
    cp -p -- "$file" "$2/$rel"
    staged+=("f $2/$rel")
  done < <(find "$1" -type f -print0)
}

make_dirs "$record_dir"
put_tree "$artefacts/VST3/Zolk Compressor.vst3" "$HOME/.vst3/Zolk Compressor.vst3"
put_tree "$artefacts/LV2/Zolk Compressor.lv2" "$HOME/.lv2/Zolk Compressor.lv2"
put "$artefacts/Standalone/Zolk Compressor" "$HOME/.local/bin/zolk-compressor" 755
put "$ZOLK_BUILD/app/zolk-render" "$HOME/.local/bin/zolk-render" 755

desktop="$(mktemp)"
trap 'rm -f "$desktop"' EXIT
# ~/.local/bin is not on every desktop session's path: the entry names the program in full.
sed "s|^Exec=zolk-compressor|Exec=\"$HOME/.local/bin/zolk-compressor\"|" \
  "$ZOLK_ROOT/packaging/zolk-compressor.desktop" >"$desktop"
put "$desktop" "$HOME/.local/share/applications/zolk-compressor.desktop"
put "$ZOLK_ROOT/packaging/zolk-compressor.svg" "$HOME/.local/share/icons/hicolor/scalable/apps/zolk-compressor.svg"

doc="$HOME/.local/share/doc/zolk-compressor"
put "$ZOLK_ROOT/docs/manual.md" "$doc/manual.md"
put_tree "$ZOLK_ROOT/docs/manual" "$doc/manual"
if [ -f "$ZOLK_BUILD/docs/manual.html" ]; then
  put "$ZOLK_BUILD/docs/manual.html" "$doc/manual.html"
fi

printf '%s\n' "${staged[@]}" >"$record"
echo "Installed Zolk Compressor for $(id -un): ~/.vst3, ~/.lv2, ~/.local/bin, ~/.local/share"
