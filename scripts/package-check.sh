#!/usr/bin/env bash
# Installs the Debian package, loads the installed VST3 and LV2 through JUCE's hosting
# (the hosted plug-in and program tests), removes the package and checks that nothing
# of it is left.
#   bash scripts/package-check.sh [PACKAGE.deb]           into a scratch root (dpkg --root);
#                                                         the machine stays as it is
#   bash scripts/package-check.sh --system [PACKAGE.deb]  on this machine, with apt-get, as root
# Without a package it builds one from the build folder (bash scripts/main.sh first).
# Not part of CI.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/env.sh"

mode=scratch
if [ "${1:-}" = "--system" ]; then
  mode=system
  shift
  [ "$(id -u)" -eq 0 ] || { echo "--system installs with apt-get: run it as root" >&2; exit 2; }
fi
deb="${1:-}"

host_tests="$ZOLK_BUILD/tests/zolk_host_tests_artefacts/Release/zolk_host_tests"
[ -x "$host_tests" ] || { echo "no $host_tests: build first (bash scripts/main.sh)" >&2; exit 2; }
if [ -z "$deb" ]; then
  out="$ZOLK_BUILD/package"
  cpack -G DEB --config "$ZOLK_BUILD/CPackConfig.cmake" -B "$out" >/dev/null
  deb="$(ls -t "$out"/zolk-compressor_*.deb | head -1)"
fi
deb="$(realpath "$deb")"
echo "package: $deb"

scratch_home="$(mktemp -d)"
root=""
cleanup() { rm -rf "$scratch_home"; [ -z "$root" ] || rm -rf "$root"; }
trap cleanup EXIT

force_user=""
[ "$(id -u)" -eq 0 ] || force_user="--force-not-root"
if [ "$mode" = scratch ]; then
  root="$(mktemp -d)"
  mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates"
  touch "$root/var/lib/dpkg/status" "$root/var/lib/dpkg/available"
  # The scratch root holds none of the libraries the package depends on.
  dpkg --root="$root" $force_user --force-depends --install "$deb" >"$root/install.log" 2>&1 ||
    { cat "$root/install.log"; exit 1; }
  rm "$root/install.log"
  prefix="$root/usr"
else
  DEBIAN_FRONTEND=noninteractive apt-get install -y "$deb"
  prefix="/usr"
fi

# The installed bundles, loaded as a host loads them; a scratch home keeps the
# user's presets out of it.
HOME="$scratch_home" \
ZOLK_VST3_BUNDLE="$prefix/lib/vst3/Zolk Compressor.vst3" \
ZOLK_LV2_BUNDLE="$prefix/lib/lv2/Zolk Compressor.lv2" \
  "$host_tests" --gtest_filter='*HostedPlugin*:*HostedPrograms*:HostedVST3.*' | tee "$scratch_home/tests.log"
grep -q '^\[  PASSED  \] [1-9]' "$scratch_home/tests.log" || { echo "no hosted test passed"; exit 1; }

if [ "$mode" = scratch ]; then
  dpkg --root="$root" $force_user --purge zolk-compressor
  left="$(cd "$root" && find . -mindepth 1 -not -type d -not -path './var/lib/dpkg/*')"
else
  apt-get remove -y zolk-compressor
  left="$(dpkg-deb -c "$deb" | awk '$1 !~ /^d/ { $1=$2=$3=$4=$5=""; print substr($0, 6) }' | sed 's/^\.//; s/ -> .*//' |
    while IFS= read -r f; do [ -e "$f" ] && echo "$f"; done || true)"
fi
[ -z "$left" ] || { echo "left behind after removal:"; echo "$left"; exit 1; }
echo "package check: installed, loaded, removed; nothing left behind"
