# Shared settings of the build scripts: one Release build directory, ccache keyed
# on paths relative to the checkout so that fresh clones and work trees share it.
ZOLK_ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
ZOLK_BUILD="${ZOLK_BUILD:-$ZOLK_ROOT/build}"
export CCACHE_BASEDIR="$(dirname "$ZOLK_ROOT")"
export CCACHE_NOHASHDIR=1
export CCACHE_MAXSIZE="${CCACHE_MAXSIZE:-5G}"

zolk_configure_and_build() {
  cmake -S "$ZOLK_ROOT" -B "$ZOLK_BUILD" -G Ninja -DCMAKE_BUILD_TYPE=Release "$@"
  cmake --build "$ZOLK_BUILD" -j"$(nproc)"
}
