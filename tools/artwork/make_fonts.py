#!/usr/bin/env python3
"""Makes the embedded fonts from Debian's open fonts.

- "Hvn-Symbols.ttf": our icon font, drawn here, glyphs in the Private Use Area.
- "HvnNumbersCompressed.ttf": Noto Sans narrowed to 80 %, Basic Latin only.
- "FormaDJRText-Medium.ttf", "FormaDJRText-Italic.ttf": Noto Sans text faces,
  cut down to Latin, punctuation and arrows.

Usage: make_fonts.py <out-dir>"""
import math
import sys

from fontTools import subset
from fontTools.fontBuilder import FontBuilder
from fontTools.pens.transformPen import TransformPen
from fontTools.pens.ttGlyphPen import TTGlyphPen
from fontTools.ttLib import TTFont

NOTO = "/usr/share/fonts/truetype/noto/"
UPEM = 1000
# Font timestamps stay fixed so that regenerating changes files only when the design does.
FIXED_TIME = 3_840_000_000  # seconds since 1904, in 2025

# Code points the editor asks for; editor/TRQSymbols.h names the same values.
SYMBOLS = {
    0xE102: "lock",
    0xE110: "undo",
    0xE111: "redo",
    0xE114: "next",
    0xE115: "previous",
    0xE120: "advanced",
    0xE121: "advancedClose",
    0xE122: "shareSettings",
    0xE130: "dismiss",
    0xE131: "rowMenu",
    0xE140: "arrowUp",
    0xE141: "arrowDown",
    0xE142: "arrowLeft",
    0xE143: "arrowRight",
    0xE800: "unitDbPerOctave",
    0xE801: "unitKilohertz",
    0xE802: "unitHertz",
    0xE803: "unitDecibel",
    0xE804: "unitPercent",
    0xE805: "unitSecond",
    0xE806: "unitMillisecond",
    0xE807: "unitDegree",
    0xE808: "unitBpm",
    0xE809: "unitTimes",
}

UNIT_TEXT = {
    "unitDbPerOctave": "dB/oct",
    "unitKilohertz": "kHz",
    "unitHertz": "Hz",
    "unitDecibel": "dB",
    "unitPercent": "%",
    "unitSecond": "s",
    "unitMillisecond": "ms",
    "unitDegree": "°",
    "unitBpm": "BPM",
    "unitTimes": "×",
}


class Shape:
    """Polygons in font units, y up. Outer contours clockwise, holes
    counter-clockwise, as TrueType's non-zero fill expects."""

    def __init__(self):
        self.contours = []

    def poly(self, pts, hole=False):
        area = sum(x0 * y1 - x1 * y0 for (x0, y0), (x1, y1) in zip(pts, pts[1:] + pts[:1]))
        clockwise = area < 0
        if clockwise == hole:
            pts = pts[::-1]
        self.contours.append([(round(x), round(y)) for x, y in pts])

    def rect(self, x, y, w, h, hole=False):
        self.poly([(x, y), (x + w, y), (x + w, y + h), (x, y + h)], hole)

    def circle(self, cx, cy, r, hole=False, steps=40):
        self.poly([(cx + r * math.cos(2 * math.pi * i / steps), cy + r * math.sin(2 * math.pi * i / steps))
                   for i in range(steps)], hole)

    def arc_band(self, cx, cy, r0, r1, a0, a1, steps=28):
        """A ring segment between radii r0 < r1 from angle a0 to a1 (degrees)."""
        outer = [(cx + r1 * math.cos(math.radians(a0 + (a1 - a0) * i / steps)),
                  cy + r1 * math.sin(math.radians(a0 + (a1 - a0) * i / steps))) for i in range(steps + 1)]
        inner = [(cx + r0 * math.cos(math.radians(a1 - (a1 - a0) * i / steps)),
                  cy + r0 * math.sin(math.radians(a1 - (a1 - a0) * i / steps))) for i in range(steps + 1)]
        self.poly(outer + inner)

    def stroke(self, x0, y0, x1, y1, width):
        dx, dy = x1 - x0, y1 - y0
        n = math.hypot(dx, dy)
        ox, oy = -dy / n * width / 2, dx / n * width / 2
        self.poly([(x0 + ox, y0 + oy), (x1 + ox, y1 + oy), (x1 - ox, y1 - oy), (x0 - ox, y0 - oy)])

    def mirrored(self, axis_x):
        s = Shape()
        for c in self.contours:
            s.contours.append([(2 * axis_x - x, y) for x, y in c][::-1])
        return s

    def glyph(self):
        pen = TTGlyphPen(None)
        for c in self.contours:
            pen.moveTo(c[0])
            for p in c[1:]:
                pen.lineTo(p)
            pen.closePath()
        return pen.glyph()


def chevron(pointing_right, cx=500, cy=350):
    s = Shape()
    pts = [(-130, 300), (-20, 300), (170, 0), (-20, -300), (-130, -300), (60, 0)]
    d = 1 if pointing_right else -1
    s.poly([(cx + d * x, cy + y) for x, y in pts])
    return s


def arrow(direction, cx=500, cy=350):
    s = Shape()
    head = [(0, 300), (-230, 40), (230, 40)]
    shaft = [(-70, 60), (70, 60), (70, -300), (-70, -300)]
    rot = {"up": 0, "down": 180, "left": 90, "right": -90}[direction]
    a = math.radians(rot)

    def tr(p):
        x, y = p
        return (cx + x * math.cos(a) - y * math.sin(a), cy + x * math.sin(a) + y * math.cos(a))

    s.poly([tr(p) for p in head])
    s.poly([tr(p) for p in shaft])
    return s


def undo():
    s = Shape()
    s.arc_band(520, 300, 190, 290, -90, 150)
    # arrow head at the open end, pointing left
    s.poly([(120, 380), (330, 560), (330, 200)])
    return s


def icon(name):
    s = Shape()
    if name == "lock":
        s.rect(160, -60, 680, 480)
        s.circle(500, 180, 70, hole=True)
        s.arc_band(500, 420, 170, 260, 0, 180)
    elif name == "undo":
        s = undo()
    elif name == "redo":
        s = undo().mirrored(500)
    elif name == "next":
        s = chevron(True)
    elif name == "previous":
        s = chevron(False)
    elif name in ("advanced", "advancedClose"):
        for i, x in enumerate((230, 500, 770)):
            s.rect(x - 35, -80, 70, 800)
            knob = (560, 160, 420)[i]
            s.rect(x - 110, knob - 60, 220, 120)
        if name == "advancedClose":
            s = Shape()
            for i, y in enumerate((600, 320, 40)):
                s.rect(-100 + 200, y - 35, 800, 70)
                knob = (640, 330, 500)[i]
                s.rect(knob - 60, y - 110, 120, 220)
    elif name == "shareSettings":
        # two linked rings
        s.arc_band(370, 330, 140, 220, 0, 360, 40)
        s.arc_band(630, 330, 140, 220, 0, 360, 40)
    elif name == "dismiss":
        s.stroke(220, 70, 780, 630, 110)
        s.stroke(220, 630, 780, 70, 110)
    elif name == "rowMenu":
        for x in (220, 500, 780):
            s.circle(x, 350, 85)
    elif name.startswith("arrow"):
        s = arrow(name[5:].lower())
    return s


def unit_glyph(name, noto):
    """The unit's letters taken from Noto Sans at 70 %, set tight."""
    cmap = noto.getBestCmap()
    gs = noto.getGlyphSet()
    pen = TTGlyphPen(None)
    x = 40
    scale = 0.7
    for ch in UNIT_TEXT[name]:
        gname = cmap[ord(ch)]
        gs[gname].draw(TransformPen(pen, (scale, 0, 0, scale, x, 0)))
        x += gs[gname].width * scale - 10
    return pen.glyph(), int(x + 50)


def build_symbols(path):
    noto = TTFont(NOTO + "NotoSans-Regular.ttf")
    order = [".notdef", "space"] + list(SYMBOLS.values())
    glyphs = {".notdef": Shape().glyph(), "space": Shape().glyph()}
    metrics = {".notdef": (600, 0), "space": (300, 0)}
    for name in SYMBOLS.values():
        if name.startswith("unit"):
            g, adv = unit_glyph(name, noto)
        else:
            g, adv = icon(name).glyph(), UPEM
        glyphs[name] = g
        metrics[name] = (adv, 0)
    fb = FontBuilder(UPEM, isTTF=True)
    fb.setupGlyphOrder(order)
    fb.setupCharacterMap({0x20: "space", **SYMBOLS})
    fb.setupGlyf(glyphs)
    glyf = fb.font["glyf"]
    fb.setupHorizontalMetrics({n: (metrics[n][0], getattr(glyf[n], "xMin", 0)) for n in order})
    fb.setupHorizontalHeader(ascent=880, descent=-120)
    fb.setupNameTable({"familyName": "Hvn Symbols", "styleName": "Regular",
                       "copyright": "Icons drawn for Zolk Compressor; unit letters from Noto Sans (SIL OFL 1.1)"})
    fb.setupOS2(sTypoAscender=880, sTypoDescender=-120, usWinAscent=900, usWinDescent=150)
    fb.setupPost()
    fb.font["head"].created = fb.font["head"].modified = FIXED_TIME
    fb.font.recalcTimestamp = False
    fb.save(path)


def subset_font(src, dst, unicodes, options=None):
    opts = subset.Options()
    opts.hinting = False
    opts.name_IDs = ["*"]
    opts.notdef_outline = True
    opts.layout_features = ["kern", "liga", "calt", "ccmp", "locl", "mark", "mkmk"]
    for k, v in (options or {}).items():
        setattr(opts, k, v)
    font = subset.load_font(src, opts)
    font.recalcTimestamp = False
    sub = subset.Subsetter(opts)
    sub.populate(unicodes=unicodes)
    sub.subset(font)
    return font


def build_numbers(path):
    font = subset_font(NOTO + "NotoSans-Regular.ttf", path, range(0x20, 0x7F),
                       {"layout_features": [], "drop_tables": ["GSUB", "GPOS", "GDEF", "kern"]})
    gs = font.getGlyphSet()
    glyf, hmtx = font["glyf"], font["hmtx"]
    narrow = 0.8
    new = {}
    for name in font.getGlyphOrder():
        pen = TTGlyphPen(gs)
        gs[name].draw(TransformPen(pen, (narrow, 0, 0, 1, 0, 0)))
        new[name] = pen.glyph()
    for name, g in new.items():
        glyf[name] = g
        g.recalcBounds(glyf)
        hmtx[name] = (int(round(hmtx[name][0] * narrow)), getattr(g, "xMin", 0))
    names = font["name"]
    for rec in list(names.names):
        if rec.nameID in (1, 4, 16):
            names.setName("Hvn Numbers Compressed", rec.nameID, rec.platformID, rec.platEncID, rec.langID)
        elif rec.nameID == 6:
            names.setName("HvnNumbersCompressed-Regular", rec.nameID, rec.platformID, rec.platEncID, rec.langID)
    font.save(path)


def build_text(src, dst):
    unicodes = list(range(0x20, 0x7F)) + list(range(0xA0, 0x250)) + list(range(0x2010, 0x2040)) \
        + [0x20AC, 0x2122, 0x2190, 0x2191, 0x2192, 0x2193, 0x2212, 0x2153]
    subset_font(src, dst, unicodes).save(dst)


def main():
    out = sys.argv[1]
    build_symbols(f"{out}/Hvn-Symbols.ttf")
    build_numbers(f"{out}/HvnNumbersCompressed.ttf")
    build_text(NOTO + "NotoSans-Regular.ttf", f"{out}/FormaDJRText-Medium.ttf")
    build_text(NOTO + "NotoSans-Italic.ttf", f"{out}/FormaDJRText-Italic.ttf")


if __name__ == "__main__":
    main()
