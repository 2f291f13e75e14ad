#!/usr/bin/env bash
# scripts/install-user.sh in a scratch home: the plug-ins, programs, desktop entry
# and manual land where hosts and desktops look, the renderer finds the factory
# presets the plug-in carries, a second install replaces the first, and
# --uninstall leaves the home exactly as it found it, the user's own files included.
#   install-user-test.sh SOURCE_DIR BUILD_DIR
set -euo pipefail
source_dir="$1"
build_dir="$2"
home="$(mktemp -d)"
trap 'rm -rf "$home"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

mkdir -p "$home/.vst3/Other.vst3" "$home/.local/bin" "$home/.local/share/applications"
echo mine >"$home/.vst3/Other.vst3/keep"
echo mine >"$home/.local/bin/other-tool"
listing() { (cd "$home" && find . -printf '%p %s\n' | sort); }
before="$(listing)"

run() { HOME="$home" ZOLK_BUILD="$build_dir" bash "$source_dir/scripts/install-user.sh" "$@" >/dev/null; }
run
run

[ -f "$home/.vst3/Zolk Compressor.vst3/Contents/x86_64-linux/Zolk Compressor.so" ] || fail "VST3 bundle"
[ -f "$home/.lv2/Zolk Compressor.lv2/manifest.ttl" ] || fail "LV2 bundle"
[ -x "$home/.local/bin/zolk-compressor" ] || fail "Standalone"
[ -x "$home/.local/bin/zolk-render" ] || fail "renderer"
grep -qx "Exec=\"$home/.local/bin/zolk-compressor\"" "$home/.local/share/applications/zolk-compressor.desktop" \
  || fail "desktop entry names the program in full"
[ -f "$home/.local/share/icons/hicolor/scalable/apps/zolk-compressor.svg" ] || fail "icon"
[ -f "$home/.local/share/doc/zolk-compressor/manual.md" ] || fail "manual"
[ -f "$home/.local/share/doc/zolk-compressor/manual/compressor-curves.png" ] || fail "manual figures"
HOME="$home" "$home/.local/bin/zolk-render" --list-presets | grep -q "Shellac 78" \
  || fail "factory presets without an installed factory file"

run --uninstall
after="$(listing)"
[ "$before" = "$after" ] || { diff <(echo "$before") <(echo "$after") >&2; fail "the home differs after --uninstall"; }
run --uninstall
echo "install-user: 1 passed, 0 failed"
