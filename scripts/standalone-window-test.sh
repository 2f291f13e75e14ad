#!/usr/bin/env bash
# Opens the built Standalone on the current X display, waits for the editor's first
# OpenGL frame, photographs the window and checks two pixels of the panel.
# Usage: standalone-window-test.sh <Standalone binary> <screenshot.png>
set -euo pipefail
app="$1"
shot="$2"
log="$(mktemp)"
mkdir -p "$(dirname "$shot")"
# Park the X pointer in the screen's corner, off the window, so that no control
# under it shows its tip in the picture (libX11 through Python's ctypes).
python3 - <<'PY' || true
import ctypes
x = ctypes.CDLL("libX11.so.6")
x.XOpenDisplay.restype = ctypes.c_void_p
x.XDefaultRootWindow.argtypes = [ctypes.c_void_p]
x.XDefaultRootWindow.restype = ctypes.c_ulong
x.XWarpPointer.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_ulong] + [ctypes.c_int] * 2 + [ctypes.c_uint] * 2 + [ctypes.c_int] * 2
x.XCloseDisplay.argtypes = [ctypes.c_void_p]
display = x.XOpenDisplay(None)
if display:
    x.XWarpPointer(display, 0, x.XDefaultRootWindow(display), 0, 0, 0, 0, 1599, 999)
    x.XCloseDisplay(display)
PY
ZOLK_REPORT_FIRST_FRAME=1 "$app" >"$log" 2>&1 &
pid=$!
trap 'kill "$pid" 2>/dev/null || true; rm -f "$log"' EXIT
start=$(date +%s%N)
for _ in $(seq 1 200); do
  grep -q "first frame" "$log" && break
  sleep 0.05
done
grep "first frame" "$log" || { echo "no GL frame from the Standalone"; cat "$log"; exit 1; }
echo "process start to first frame: $(( ($(date +%s%N) - start) / 1000000 )) ms (polled)"
sleep 1
geometry=$(xwininfo -root -tree | grep '"Zolk Compressor"' | grep -oE '[0-9]+x[0-9]+\+[0-9]+\+[0-9]+' | sort -t x -k1 -n | tail -1)
echo "window: $geometry"
import -window root -crop "$geometry" +repage "$shot"
# The window holds the title bar and the options strip above the editor, so look
# for the panel's colours anywhere: the light panel and the red centre strip.
light=$(convert "$shot" -fuzz 2% -fill black +opaque "rgb(253,253,253)" -format "%[fx:mean>0.1]" info:)
red=$(convert "$shot" -fuzz 3% -fill black +opaque "rgb(194,78,84)" -format "%[fx:mean>0.01]" info:)
echo "light panel: $light, red strip: $red"
[ "$light" = 1 ] && [ "$red" = 1 ]
