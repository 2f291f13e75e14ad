#!/usr/bin/env bash
# Builds the Debian package with cpack and reads it back with dpkg-deb: its metadata
# (name, the catalogue's version, architecture, dependencies from the binaries,
# maintainer, section) and that every file lies where Linux hosts and desktops look.
#   package-test.sh BUILD_DIR VERSION FACTORY_PRESET_FILE
set -euo pipefail
build_dir="$1"
version="$2"
presets="$(grep -c "\"uuid\"" "$3")"
out="$(mktemp -d)"
trap 'rm -rf "$out"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

start=$(date +%s)
cpack -G DEB --config "$build_dir/CPackConfig.cmake" -B "$out" >"$out/cpack.log" 2>&1 || { cat "$out/cpack.log"; fail "cpack"; }
deb="$out/zolk-compressor_${version}_$(dpkg --print-architecture).deb"
[ -f "$deb" ] || { ls "$out"; fail "no $deb"; }
echo "package built in $(( $(date +%s) - start )) s: $(du -h "$deb" | cut -f1)"

field() { dpkg-deb -f "$deb" "$1"; }
[ "$(field Package)" = zolk-compressor ] || fail "Package: $(field Package)"
[ "$(field Version)" = "$version" ] || fail "Version: $(field Version)"
[ "$(field Architecture)" = "$(dpkg --print-architecture)" ] || fail "Architecture"
[ "$(field Section)" = sound ] || fail "Section: $(field Section)"
# (Captured first: grep -q leaving a pipe early would fail it under pipefail.)
maintainer="$(field Maintainer)"
description="$(field Description)"
depends="$(field Depends)"
grep -q '<.*@.*>' <<<"$maintainer" || fail "Maintainer: $maintainer"
grep -q "compressor" <<<"$description" || fail "Description"
grep -q "libc6" <<<"$depends" || fail "Depends from the binaries: $depends"

files="$(dpkg-deb -c "$deb" | awk '{ $1=$2=$3=$4=$5=""; print substr($0, 6) }' | sed 's/ -> .*//')"
for f in "./usr/lib/vst3/Zolk Compressor.vst3/Contents/x86_64-linux/Zolk Compressor.so" \
         "./usr/lib/lv2/Zolk Compressor.lv2/manifest.ttl" \
         ./usr/bin/zolk-compressor ./usr/bin/zolk-render \
         ./usr/share/applications/zolk-compressor.desktop \
         ./usr/share/icons/hicolor/scalable/apps/zolk-compressor.svg \
         ./usr/share/doc/zolk-compressor/manual.md ./usr/share/doc/zolk-compressor/manual.html \
         ./opt/Halvane/0002/TQPresets.json; do
  grep -qxF "$f" <<<"$files" || fail "missing $f"
done
stray="$(grep -v -e '^\./usr/' -e '^\./opt/' -e '^\./$' <<<"$files" || true)"
[ -z "$stray" ] || fail "files outside /usr and /opt: $stray"
grep -q '^\./usr/local' <<<"$files" && fail "files under /usr/local"

# The LV2 bundle declares the factory presets by name.
dpkg-deb -x "$deb" "$out/root"
count=$(grep -c 'a pset:Preset' "$out/root/usr/lib/lv2/Zolk Compressor.lv2/manifest.ttl")
[ "$count" = "$presets" ] || fail "the LV2 manifest declares $count presets, not $presets"
grep -q 'rdfs:label "Shellac 78"' "$out/root/usr/lib/lv2/Zolk Compressor.lv2/manifest.ttl" || fail "preset names"
echo "package: 1 passed, 0 failed"
