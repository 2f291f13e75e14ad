#!/usr/bin/env bash
# Installs the Debian packages the build and tests need, only those missing.
#   bash scripts/install-deps.sh            build, tests, benchmarks, fuzzing
#   bash scripts/install-deps.sh artwork    also what regenerating the artwork needs
#   bash scripts/install-deps.sh manual     also what drawing the manual's figures needs
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config ccache
  juce-modules-source
  libgtest-dev libgmock-dev googletest libbenchmark-dev
  libxsimd-dev libfftw3-dev nlohmann-json3-dev libsoxr-dev libsndfile1-dev
  xvfb xauth mesa-utils imagemagick sox x11-utils libx11-dev libxtst-dev
  clang libclang-rt-14-dev
  python3-markdown
)

if [ "${1:-}" = "artwork" ]; then
  packages+=(libharfbuzz-dev libfreetype-dev python3-fonttools fonts-noto-core fonts-noto-cjk fonts-symbola)
fi
if [ "${1:-}" = "manual" ]; then
  packages+=(python3-matplotlib python3-numpy)
fi

missing=()
for p in "${packages[@]}"; do
  dpkg -s "$p" >/dev/null 2>&1 || missing+=("$p")
done

if [ ${#missing[@]} -gt 0 ]; then
  sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  echo "Installing: ${missing[*]}"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
