#!/usr/bin/env python3
"""Generates the fitted tables of the signal path as a C++ header.

The tuning is held here as its anchor values: every anchor is hit exactly, and
the entries between anchors come from a shape-preserving cubic (monotone
piecewise Hermite with Fritsch-Carlson slopes), which never overshoots the
anchors on either side. The compressor's tables are interpolated first along
their columns, for each anchor row, then down the rows, for each column.

    python3 tools/generate-dsp-tables.py           # rewrite the header
    python3 tools/generate-dsp-tables.py --check   # fail if it is out of date

Standard library only.
"""

import argparse
import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
OUTPUT = ROOT / "dsp" / "generated" / "HVNCompressorTables.h"

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


def pchip_slopes(xs, ys):
    """Fritsch-Carlson slopes: zero at extrema and flats, a weighted harmonic
    mean elsewhere, one-sided shape-preserving estimates at the ends."""
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

    d[0] = edge(h[0], h[1], delta[0], delta[1])
    d[-1] = edge(h[-1], h[-2], delta[-1], delta[-2])
    return d


def pchip(xs, ys, points):
    """Evaluates the monotone cubic through (xs, ys) at each of points; a point
    on an anchor returns the anchor's value unchanged."""
    d = pchip_slopes(xs, ys)
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


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--check", action="store_true", help="compare with the committed header")
    args = parser.parse_args()
    text = render(build())
    if args.check:
        if not OUTPUT.exists() or OUTPUT.read_text() != text:
            print(f"{OUTPUT.relative_to(ROOT)} is out of date: run tools/generate-dsp-tables.py",
                  file=sys.stderr)
            return 1
        return 0
    OUTPUT.parent.mkdir(parents=True, exist_ok=True)
    OUTPUT.write_text(text)
    return 0


if __name__ == "__main__":
    sys.exit(main())
