#!/usr/bin/env python3
"""Generates the fitted tables of the signal path as C++ headers.

The tuning is held here as its anchor values: every anchor is hit exactly, and
the entries between anchors come from a shape-preserving cubic (monotone
piecewise Hermite with Fritsch-Carlson slopes), which never overshoots the
anchors on either side. The compressor's tables are interpolated first along
their columns, for each anchor row, then down the rows, for each column.
The lo-fi section's soft clipper and analog responses are curves through their
measured points in the same way.

    python3 tools/generate-dsp-tables.py           # rewrite the header
    python3 tools/generate-dsp-tables.py --check   # fail if it is out of date

Standard library only.
"""

import argparse
import math
import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
OUTPUT = ROOT / "dsp" / "generated" / "HVNCompressorTables.h"
LOFI_OUTPUT = ROOT / "dsp" / "generated" / "HVNLoFiTables.h"

ROWS = 21
GAIN_COLUMNS = 64
TIME_COLUMNS = 23

# Threshold and makeup in dB, one pair per row (row = amount / 5).
THRESHOLD_MAKEUP = [
    (-62.248010, 11.687052), (-62.240809, 11.690908), (-62.224007, 11.740465),
    (-62.154400, 12.604470), (-62.097995, 13.672751), (-62.010386, 15.039217),
    (-61.909576, 16.619621), (-61.808766, 17.958769), (-61.614346, 19.745122),
    (-61.614346, 20.904643), (-61.711556, 22.291478), (-61.695954, 23.573447),
    (-61.255510, 24.889591), (-60.659051, 26.208340), (-60.353020, 26.883589),
    (-60.229795, 27.636232), (-59.563728, 28.445812), (-59.076480, 29.116905),
    (-59.083680, 29.761218), (-59.086081, 29.764884), (-59.078880, 29.759370),
]

# Gain reduction in dB against overshoot in dB; column 0 is always 0.
GAIN_ANCHOR_COLUMNS = [0, 1, 2, 4, 8, 10, 20, 30, 40, 50, 63]
GAIN_ANCHORS = {
    0: [0.0, 0.562, 1.135, 2.278, 4.364, 5.330, 9.012, 10.939, 11.794, 12.145, 12.326],
    2: [0.0, 0.618, 1.244, 2.495, 4.815, 5.914, 10.287, 12.746, 13.894, 14.367, 14.640],
    5: [0.0, 0.722, 1.456, 2.912, 5.590, 6.910, 12.643, 16.420, 18.423, 19.319, 19.850],
    8: [0.0, 0.777, 1.560, 3.103, 5.980, 7.425, 13.959, 18.753, 21.579, 22.956, 23.781],
    10: [0.0, 0.721, 1.442, 2.883, 5.784, 7.286, 14.330, 19.833, 23.356, 25.197, 26.322],
    13: [0.0, 0.796, 1.589, 3.138, 6.133, 7.684, 15.402, 22.094, 27.123, 30.223, 32.458],
    15: [0.0, 0.759, 1.501, 2.964, 6.015, 7.654, 15.694, 22.984, 28.965, 33.115, 36.514],
    18: [0.0, 0.730, 1.451, 2.900, 6.021, 7.716, 16.176, 24.560, 32.805, 40.921, 51.394],
    20: [0.0, 0.730, 1.451, 2.899, 6.022, 7.718, 16.178, 24.561, 32.806, 40.923, 51.395],
}

# Time laws against the level index q (22 at 0 dBFS, one step per 3 dB). The
# first anchor stands for columns 0 to 7, which are constant within a row.
TIME_ANCHOR_COLUMNS = [0, 7, 10, 15, 16, 22]
TIME_ANCHORS = {
    "timeA": {
        0: [-0.3210, -0.3384, -0.3909, -0.3618, -0.3877],
        10: [-0.1628, -0.1975, -0.1662, -0.1721, -0.1025],
        20: [0.0302, -0.0190, -0.0390, -0.0435, -0.1091],
    },
    "timeB": {
        0: [-0.2475, -0.2538, -0.2358, -0.2505, -0.2209],
        10: [-0.2168, -0.1757, -0.0792, -0.0778, -0.1047],
        20: [-0.1837, -0.1629, -0.1152, -0.1010, 0.0072],
    },
    "timeC": {
        0: [0.5154, 0.4168, 0.3254, 0.9262, 0.5622],
        10: [0.5144, -0.1209, 5.8948, 3.9992, 6.4722],
        20: [8.3783, 8.3787, 8.3788, 8.3789, 8.0106],
    },
}


def pchip_slopes(xs, ys, first=None, last=None):
    """Fritsch-Carlson slopes: zero at extrema and flats, a weighted harmonic
    mean elsewhere, one-sided shape-preserving estimates at the ends unless an
    end's slope is given."""
    n = len(xs)
    h = [xs[k + 1] - xs[k] for k in range(n - 1)]
    delta = [(ys[k + 1] - ys[k]) / h[k] for k in range(n - 1)]
    if n == 2:
        return [delta[0], delta[0]]
    d = [0.0] * n
    for k in range(1, n - 1):
        if delta[k - 1] * delta[k] <= 0.0:
            d[k] = 0.0
        else:
            w1 = 2.0 * h[k] + h[k - 1]
            w2 = h[k] + 2.0 * h[k - 1]
            d[k] = (w1 + w2) / (w1 / delta[k - 1] + w2 / delta[k])

    def edge(h0, h1, m0, m1):
        slope = ((2.0 * h0 + h1) * m0 - h0 * m1) / (h0 + h1)
        if slope * m0 <= 0.0:
            return 0.0
        if m0 * m1 < 0.0 and abs(slope) > abs(3.0 * m0):
            return 3.0 * m0
        return slope

    d[0] = edge(h[0], h[1], delta[0], delta[1]) if first is None else first
    d[-1] = edge(h[-1], h[-2], delta[-1], delta[-2]) if last is None else last
    return d


def pchip(xs, ys, points, first=None, last=None):
    """Evaluates the monotone cubic through (xs, ys) at each of points; a point
    on an anchor returns the anchor's value unchanged."""
    d = pchip_slopes(xs, ys, first, last)
    out = []
    for x in points:
        if x in xs:
            out.append(ys[xs.index(x)])
            continue
        k = max(i for i in range(len(xs) - 1) if xs[i] <= x)
        if ys[k] == ys[k + 1] and d[k] == 0.0 and d[k + 1] == 0.0:
            out.append(ys[k])  # a flat stretch stays exactly flat
            continue
        h = xs[k + 1] - xs[k]
        t = (x - xs[k]) / h
        h00 = (1 + 2 * t) * (1 - t) ** 2
        h10 = t * (1 - t) ** 2
        h01 = t * t * (3 - 2 * t)
        h11 = t * t * (t - 1)
        out.append(h00 * ys[k] + h10 * h * d[k] + h01 * ys[k + 1] + h11 * h * d[k + 1])
    return out


def fill_table(anchor_columns, anchors, columns):
    """Columns first for each anchor row, then rows for each column."""
    anchor_rows = sorted(anchors)
    by_row = {r: pchip(anchor_columns, anchors[r], list(range(columns))) for r in anchor_rows}
    table = [[0.0] * columns for _ in range(ROWS)]
    for c in range(columns):
        values = pchip(anchor_rows, [by_row[r][c] for r in anchor_rows], list(range(ROWS)))
        for r in range(ROWS):
            table[r][c] = values[r]
    return table


def time_anchors(name):
    return {r: [v[0]] + v for r, v in TIME_ANCHORS[name].items()}


def build():
    tables = {"gain": fill_table(GAIN_ANCHOR_COLUMNS, GAIN_ANCHORS, GAIN_COLUMNS)}
    for name in ("timeA", "timeB", "timeC"):
        tables[name] = fill_table(TIME_ANCHOR_COLUMNS, time_anchors(name), TIME_COLUMNS)
    return tables


def number(v):
    text = repr(float(v))
    return text if ("." in text or "e" in text) else text + ".0"


def render_row(values):
    return "{" + ", ".join(number(v) for v in values) + "}"


def render(tables):
    lines = [
        "// Generated by tools/generate-dsp-tables.py; do not edit.",
        "#pragma once",
        "",
        "#include <cstdint>",
        "",
        "// The compressor's tuning: threshold and makeup per amount row, the gain",
        "// reduction against overshoot, and the three time laws against level.",
        "namespace HVNCompressorTables",
        "{",
        f"constexpr uint32_t rows = {ROWS};",
        f"constexpr uint32_t gainColumns = {GAIN_COLUMNS};",
        f"constexpr uint32_t timeColumns = {TIME_COLUMNS};",
        "",
        "constexpr double thresholdDb[rows] = " + render_row(t for t, _ in THRESHOLD_MAKEUP) + ";",
        "constexpr double makeupDb[rows] = " + render_row(m for _, m in THRESHOLD_MAKEUP) + ";",
        "",
    ]
    for name, columns in (("gain", "gainColumns"), ("timeA", "timeColumns"), ("timeB", "timeColumns"),
                          ("timeC", "timeColumns")):
        lines.append(f"constexpr double {name}[rows][{columns}] = {{")
        lines.extend("    " + render_row(row) + "," for row in tables[name])
        lines.append("};")
        lines.append("")
    lines.append("} // namespace HVNCompressorTables")
    return "\n".join(lines) + "\n"


# Soft clipper: positions -2..2 over 2047 entries, index 1023 at 0, so an entry
# lies offset/511.5 from the centre. The identity up to the first anchor, then
# bending into the ceiling, where it arrives flat. Odd about the centre.
SHAPER_SIZE = 2047
SHAPER_CENTRE = 1023
SHAPER_SCALE = 511.5
SHAPER_LIMIT = 1.04612836847005
# (offset from the centre in entries, value); 511.5 is x = 1.0 exactly.
SHAPER_ANCHORS = [
    (256, 256 / 511.5), (384, 0.750652), (448, 0.873858), (511.5, 0.975524), (537, 1.001942),
    (577, 1.024962), (640, 1.038914), (768, 1.045044), (1023, SHAPER_LIMIT),
]

# Analog responses in dB on a grid of 96000/8192 Hz per entry, all starting at
# 0 dB. (Hz, dB) anchors; None is the last entry. They are shaped along a
# frequency axis that is linear below RESPONSE_CORNER_HZ and logarithmic above.
RESPONSE_GRID_HZ = 96000.0 / 8192.0
RESPONSE_CORNER_HZ = 100.0
RESPONSES = {
    "responseA": (1806, [(0, 0.0), (1000, 0.0), (5000, 0.14), (10000, -2.67), (15000, -14.0),
                         (20000, -39.74), (None, -60.12)]),
    "responseB": (1713, [(0, 0.0), (1000, 0.0), (5000, -1.92), (10000, -13.11), (15000, -26.31),
                         (20000, -54.22), (None, -61.85)]),
    "responseBase": (3029, [(0, 0.0), (1000, -1.35), (5000, -1.5), (10000, -2.04), (15000, -4.74),
                            (20000, -16.73), (None, -45.0)]),
}


def shaper_table():
    xs = [offset / SHAPER_SCALE for offset, _ in SHAPER_ANCHORS]
    ys = [v for _, v in SHAPER_ANCHORS]
    positions = [offset / SHAPER_SCALE for offset in range(SHAPER_CENTRE + 1)]
    bent = pchip(xs, ys, [x for x in positions if x > xs[0]], first=1.0, last=0.0)
    half = [x for x in positions if x <= xs[0]] + bent
    return [-v for v in reversed(half[1:])] + half


def response_table(entries, anchors):
    def axis(hz):
        return math.log1p(hz / RESPONSE_CORNER_HZ)

    last_hz = (entries - 1) * RESPONSE_GRID_HZ
    xs = [axis(last_hz if hz is None else hz) for hz, _ in anchors]
    ys = [db for _, db in anchors]
    table = pchip(xs, ys, [axis(i * RESPONSE_GRID_HZ) for i in range(entries)])
    table[-1] = ys[-1]
    return table


def render_lofi():
    lines = [
        "// Generated by tools/generate-dsp-tables.py; do not edit.",
        "#pragma once",
        "",
        "#include <cstdint>",
        "",
        "// The lo-fi section's curves: the soft clipper (positions -2..2, index 1023",
        "// at 0) and the analog responses in dB on a grid of 96000/8192 Hz.",
        "namespace HVNLoFiTables",
        "{",
    ]
    tables = [("shaper", shaper_table())]
    tables += [(name, response_table(*spec)) for name, spec in RESPONSES.items()]
    for name, values in tables:
        lines.append(f"constexpr uint32_t {name}Size = {len(values)};")
        lines.append(f"inline constexpr double {name}[{name}Size] = {{")
        for k in range(0, len(values), 6):
            lines.append("    " + ", ".join(number(v) for v in values[k:k + 6]) + ",")
        lines.append("};")
        lines.append("")
    lines.append("} // namespace HVNLoFiTables")
    return "\n".join(lines) + "\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--check", action="store_true", help="compare with the committed header")
    args = parser.parse_args()
    outputs = {OUTPUT: render(build()), LOFI_OUTPUT: render_lofi()}
    if args.check:
        stale = [path for path, text in outputs.items() if not path.exists() or path.read_text() != text]
        for path in stale:
            print(f"{path.relative_to(ROOT)} is out of date: run tools/generate-dsp-tables.py", file=sys.stderr)
        return 1 if stale else 0
    for path, text in outputs.items():
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
    return 0


if __name__ == "__main__":
    sys.exit(main())
