// Builds the panel drawing: shapes every label with HarfBuzz, takes the glyph
// outlines from FreeType, places them on the canvas and writes the element
// lists as JSON. Usage: drawgen <tools/artwork> <fonts-dir> <out.json>
//
// Tile images and the content stamp are added afterwards by finish.py; this
// program leaves the placeholders "@tile-light" and "@tile-dark".

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include <hb.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

using json = nlohmann::json;

namespace
{
constexpr double canvasH = 380.0;

// ---------------------------------------------------------------- numbers and paths

std::string num (double v)
{
    double r = std::round (v * 100.0) / 100.0;
    if (std::fabs (r) < 0.005)
        r = 0.0;
    char buf[32];
    if (std::fabs (r - std::round (r)) < 1e-9)
        std::snprintf (buf, sizeof buf, "%d", (int) std::lround (r));
    else
        std::snprintf (buf, sizeof buf, "%.2f", r);
    return buf;
}

// Writes the compact path grammar: a letter is left out when it repeats.
class PathWriter
{
public:
    void move (double x, double y) { cmd ('m', {x, y}); }
    void line (double x, double y) { cmd ('l', {x, y}); }
    void quad (double x1, double y1, double x, double y) { cmd ('q', {x1, y1, x, y}); }
    void cubic (double x1, double y1, double x2, double y2, double x, double y)
    {
        cmd ('c', {x1, y1, x2, y2, x, y});
    }
    void close()
    {
        put ("z");
        last = 'z';
    }
    void rect (double x, double y, double w, double h)
    {
        move (x, y);
        line (x + w, y);
        line (x + w, y + h);
        line (x, y + h);
        close();
    }
    void roundedRect (double x, double y, double w, double h, double r)
    {
        const double k = r * 0.5523;
        move (x + r, y);
        line (x + w - r, y);
        cubic (x + w - r + k, y, x + w, y + r - k, x + w, y + r);
        line (x + w, y + h - r);
        cubic (x + w, y + h - r + k, x + w - r + k, y + h, x + w - r, y + h);
        line (x + r, y + h);
        cubic (x + r - k, y + h, x, y + h - r + k, x, y + h - r);
        line (x, y + r);
        cubic (x, y + r - k, x + r - k, y, x + r, y);
        close();
    }
    void append (const std::string& other)
    {
        if (other.empty())
            return;
        put (other);
        last = 0;
    }
    const std::string& str() const { return text; }

private:
    void put (const std::string& s)
    {
        if (! text.empty())
            text += ' ';
        text += s;
    }
    void cmd (char letter, std::initializer_list<double> values)
    {
        if (letter != last || letter == 'm')
            put (std::string (1, letter));
        last = letter;
        for (double v : values)
            put (num (v));
    }
    std::string text;
    char last = 0;
};

// ---------------------------------------------------------------- fonts

struct Font
{
    FT_Face face = nullptr;
    hb_font_t* hb = nullptr;
    double upem = 1000.0;

    bool has (uint32_t cp) const { return FT_Get_Char_Index (face, cp) != 0; }
};

FT_Library ftLibrary;

std::unique_ptr<Font> openFont (const std::string& file, int index)
{
    auto f = std::make_unique<Font>();
    if (FT_New_Face (ftLibrary, file.c_str(), index, &f->face) != 0)
        throw std::runtime_error ("cannot open font " + file);
    f->upem = f->face->units_per_EM;
    // HarfBuzz's own OpenType functions, in font units, so that advances and
    // FreeType's unscaled outlines share one unit.
    hb_blob_t* blob = hb_blob_create_from_file (file.c_str());
    hb_face_t* face = hb_face_create (blob, (unsigned) index);
    f->hb = hb_font_create (face);
    hb_face_destroy (face);
    hb_blob_destroy (blob);
    hb_font_set_scale (f->hb, (int) f->upem, (int) f->upem);
    return f;
}

struct FontSet
{
    std::map<std::string, std::unique_ptr<Font>> fonts;

    void load (const std::string& dir)
    {
        const std::string noto = "/usr/share/fonts/truetype/noto/";
        const std::string cjk = "/usr/share/fonts/opentype/noto/";
        (void) dir;
        fonts["latin"] = openFont (noto + "NotoSans-Regular.ttf", 0);
        fonts["latin-b"] = openFont (noto + "NotoSans-Bold.ttf", 0);
        fonts["arabic"] = openFont (noto + "NotoSansArabic-Regular.ttf", 0);
        fonts["arabic-b"] = openFont (noto + "NotoSansArabic-Bold.ttf", 0);
        const char* cjkNames[] = {"ja", "ko", "zh-Hans", "zh-Hant"};
        for (int i = 0; i < 4; ++i)
        {
            fonts[std::string (cjkNames[i])] = openFont (cjk + "NotoSansCJK-Regular.ttc", i);
            fonts[std::string (cjkNames[i]) + "-b"] = openFont (cjk + "NotoSansCJK-Bold.ttc", i);
        }
        fonts["symbol"] = openFont ("/usr/share/fonts/truetype/ancient-scripts/Symbola_hint.ttf", 0);
    }

    // The fonts a language's text is set in, first choice first.
    std::vector<Font*> chain (const std::string& lang, bool bold)
    {
        const std::string b = bold ? "-b" : "";
        std::vector<Font*> c;
        if (lang == "ar")
            c.push_back (fonts["arabic" + b].get());
        else if (lang == "ja" || lang == "ko" || lang == "zh-Hans" || lang == "zh-Hant")
            c.push_back (fonts[lang + b].get());
        else if (lang == "emoji")
            c.push_back (fonts["symbol"].get());
        c.push_back (fonts["latin" + b].get());
        c.push_back (fonts["symbol"].get());
        return c;
    }
};

// ---------------------------------------------------------------- shaping

std::vector<uint32_t> decodeUtf8 (const std::string& s)
{
    std::vector<uint32_t> out;
    for (size_t i = 0; i < s.size();)
    {
        const unsigned char c = (unsigned char) s[i];
        uint32_t cp;
        int n;
        if (c < 0x80)
            cp = c, n = 1;
        else if ((c >> 5) == 6)
            cp = c & 0x1f, n = 2;
        else if ((c >> 4) == 14)
            cp = c & 0x0f, n = 3;
        else
            cp = c & 0x07, n = 4;
        for (int k = 1; k < n; ++k)
            cp = (cp << 6) | ((unsigned char) s[i + (size_t) k] & 0x3f);
        i += (size_t) n;
        if (cp == 0xFE0F || cp == 0xFE0E)
            continue; // presentation selectors: outline fonts have one form only
        out.push_back (cp);
    }
    return out;
}

struct Contour
{
    // Commands in em units, y up: 'm', 'l', 'q', 'c' with their points.
    std::vector<std::pair<char, std::vector<double>>> cmds;
};

struct Shaped
{
    std::vector<Contour> contours;
    double advance = 0;
    double minX = 1e9, maxX = -1e9, minY = 1e9, maxY = -1e9;
    bool empty() const { return contours.empty(); }
};

struct DecomposeCtx
{
    Shaped* out;
    double ox, scale;
    void addPoint (double x, double y)
    {
        out->minX = std::min (out->minX, x);
        out->maxX = std::max (out->maxX, x);
        out->minY = std::min (out->minY, y);
        out->maxY = std::max (out->maxY, y);
    }
    std::vector<double> pts (std::initializer_list<const FT_Vector*> vs)
    {
        std::vector<double> r;
        for (auto* v : vs)
        {
            const double x = ox + v->x * scale, y = v->y * scale;
            addPoint (x, y);
            r.push_back (x);
            r.push_back (y);
        }
        return r;
    }
};

int ftMove (const FT_Vector* to, void* user)
{
    auto* c = static_cast<DecomposeCtx*> (user);
    c->out->contours.emplace_back();
    c->out->contours.back().cmds.push_back ({'m', c->pts ({to})});
    return 0;
}
int ftLine (const FT_Vector* to, void* user)
{
    auto* c = static_cast<DecomposeCtx*> (user);
    c->out->contours.back().cmds.push_back ({'l', c->pts ({to})});
    return 0;
}
int ftConic (const FT_Vector* ctl, const FT_Vector* to, void* user)
{
    auto* c = static_cast<DecomposeCtx*> (user);
    c->out->contours.back().cmds.push_back ({'q', c->pts ({ctl, to})});
    return 0;
}
int ftCubic (const FT_Vector* c1, const FT_Vector* c2, const FT_Vector* to, void* user)
{
    auto* c = static_cast<DecomposeCtx*> (user);
    c->out->contours.back().cmds.push_back ({'c', c->pts ({c1, c2, to})});
    return 0;
}

// Splits the text into runs of one font each, shapes every run and lays the
// runs out in visual order (right to left for Arabic paragraphs).
Shaped shapeLine (FontSet& fonts, const std::string& text, const std::string& lang, bool bold)
{
    const auto chain = fonts.chain (lang, bold);
    const auto cps = decodeUtf8 (text);

    struct Run
    {
        Font* font;
        bool number;
        std::vector<uint32_t> cps;
    };
    // Numbers read left to right even inside Arabic, so they are runs of their own.
    auto isDigit = [] (uint32_t cp)
    { return (cp >= '0' && cp <= '9') || (cp >= 0x660 && cp <= 0x669) || (cp >= 0x6F0 && cp <= 0x6F9); };
    std::vector<Run> runs;
    for (uint32_t cp : cps)
    {
        Font* f = nullptr;
        const bool neutral = cp == ' ' || cp == 0x200D;
        if (neutral && ! runs.empty())
            f = runs.back().font;
        for (Font* cand : chain)
            if (f == nullptr && cand->has (cp))
                f = cand;
        if (f == nullptr)
            throw std::runtime_error ("no font has U+" + std::to_string (cp) + " in \"" + text + "\"");
        const bool number = isDigit (cp) || (neutral && ! runs.empty() && runs.back().number && cp != ' ');
        if (runs.empty() || runs.back().font != f || runs.back().number != number)
            runs.push_back ({f, number, {}});
        runs.back().cps.push_back (cp);
    }
    if (lang == "ar")
        std::reverse (runs.begin(), runs.end());

    Shaped out;
    const double unit = 1.0;
    double pen = 0;
    for (auto& run : runs)
    {
        hb_buffer_t* buf = hb_buffer_create();
        hb_buffer_add_utf32 (buf, run.cps.data(), (int) run.cps.size(), 0, (int) run.cps.size());
        hb_buffer_guess_segment_properties (buf);
        if (run.number)
            hb_buffer_set_direction (buf, HB_DIRECTION_LTR);
        if (lang != "emoji")
            hb_buffer_set_language (buf, hb_language_from_string (lang.c_str(), -1));
        hb_shape (run.font->hb, buf, nullptr, 0);
        unsigned n = 0;
        auto* info = hb_buffer_get_glyph_infos (buf, &n);
        auto* pos = hb_buffer_get_glyph_positions (buf, &n);
        const double scale = unit / run.font->upem;
        for (unsigned i = 0; i < n; ++i)
        {
            if (FT_Load_Glyph (run.font->face, info[i].codepoint,
                               FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP)
                != 0)
                throw std::runtime_error ("glyph load failed in \"" + text + "\"");
            if (info[i].codepoint == 0)
                throw std::runtime_error ("missing glyph in \"" + text + "\"");
            FT_Outline_Funcs funcs {ftMove, ftLine, ftConic, ftCubic, 0, 0};
            DecomposeCtx ctx {&out, out.advance + (pen + pos[i].x_offset) * scale, scale};
            // y offsets are rare in our labels (Arabic marks); fold them in by shifting.
            FT_Outline& o = run.font->face->glyph->outline;
            if (pos[i].y_offset != 0)
                FT_Outline_Translate (&o, 0, pos[i].y_offset);
            FT_Outline_Decompose (&o, &funcs, &ctx);
            pen += pos[i].x_advance;
        }
        out.advance += pen * scale;
        pen = 0;
        hb_buffer_destroy (buf);
    }
    return out;
}

// ---------------------------------------------------------------- text placement

enum class Align
{
    left,
    centre,
    right
};

struct TextStyle
{
    double size = 11;   // em size in drawing units
    bool bold = false;
    Align align = Align::centre;
};

// The lines of a label placed in a box: the em size shrinks until the widest
// line fits, lines are stacked and the whole block is centred vertically on
// the ink of a reference capital, so that words with and without descenders
// sit on one line.
std::string placeText (FontSet& fonts, const std::vector<std::string>& lines, const std::string& lang,
                       double bx, double by, double bw, double bh, TextStyle st, double* inkWidth = nullptr)
{
    std::vector<Shaped> shaped;
    double widest = 0;
    for (auto& l : lines)
    {
        shaped.push_back (shapeLine (fonts, l, lang, st.bold));
        widest = std::max (widest, shaped.back().advance);
    }
    const double lineGap = 1.18;
    double size = st.size;
    if (widest * size > bw)
        size = bw / widest;
    const double blockH = size * lineGap * (double) (lines.size() - 1);
    // Visual middle of a line sits about 0.36 em above the baseline for every
    // script we set (cap height of Latin, the body of Arabic and CJK).
    const double firstBaseline = by + bh * 0.5 - blockH * 0.5 + size * 0.36;

    PathWriter pw;
    double maxW = 0;
    for (size_t li = 0; li < shaped.size(); ++li)
    {
        const Shaped& s = shaped[li];
        const double w = s.advance * size;
        maxW = std::max (maxW, w);
        double x0 = bx;
        if (st.align == Align::centre)
            x0 = bx + (bw - w) * 0.5;
        else if (st.align == Align::right)
            x0 = bx + bw - w;
        const double base = firstBaseline + (double) li * size * lineGap;
        for (const auto& contour : s.contours)
        {
            for (const auto& [letter, p] : contour.cmds)
            {
                std::vector<double> q;
                for (size_t k = 0; k < p.size(); k += 2)
                {
                    q.push_back (x0 + p[k] * size);
                    q.push_back (base - p[k + 1] * size);
                }
                if (letter == 'm')
                    pw.move (q[0], q[1]);
                else if (letter == 'l')
                    pw.line (q[0], q[1]);
                else if (letter == 'q')
                    pw.quad (q[0], q[1], q[2], q[3]);
                else
                    pw.cubic (q[0], q[1], q[2], q[3], q[4], q[5]);
            }
            pw.close();
        }
    }
    if (inkWidth != nullptr)
        *inkWidth = maxW;
    return pw.str();
}

// ---------------------------------------------------------------- element records

json colour (const json& c) { return json::array ({c[0], c[1], c[2], c[3]}); }
json rgba (double r, double g, double b, double a) { return json::array ({r, g, b, a}); }
json solid (const json& c) { return json::array ({"f", colour (c)}); }
json bounds (double x, double y, double w, double h) { return json::array ({x, y, w, h}); }

// A design-tool frame counted from the bottom of the canvas.
json frameFromBottom (const json& r)
{
    const double x = r[0], y = r[1], w = r[2], h = r[3];
    return bounds (x, canvasH - y - h, w, h);
}

json element (const std::string& d, const json& b, const json& def, const json& dark = nullptr)
{
    json e;
    e["default"] = def;
    if (! dark.is_null())
        e["dark"] = dark;
    e["d"] = d;
    e["bounds"] = b;
    return e;
}

json fillStyle (const json& c) { return json {{"fill", solid (c)}}; }

json byteColour (const json& rgb, double alpha)
{
    return rgba ((double) rgb[0] / 255.0, (double) rgb[1] / 255.0, (double) rgb[2] / 255.0, alpha);
}

std::string rectPath (double x, double y, double w, double h)
{
    PathWriter p;
    p.rect (x, y, w, h);
    return p.str();
}

// ---------------------------------------------------------------- groups

struct Generator
{
    FontSet fonts;
    json labels, panel;
    std::vector<std::string> languages;

    json colourPair (const std::string& name) { return panel["colours"][name]; }

    json textElement (const std::string& d, const json& b, const std::string& colourName)
    {
        auto c = colourPair (colourName);
        return element (d, b, fillStyle (c["default"]), fillStyle (c["dark"]));
    }

    json background()
    {
        const json& col = panel["colours"];
        json bg = json::array();
        // 0 whole canvas, 1 advanced pane above its bottom bar
        bg.push_back (element (rectPath (0, 0, 793, 380), bounds (0, 0, 793, 380),
                               fillStyle (rgba (0.99, 0.99, 0.99, 1)), fillStyle (rgba (0.15, 0.15, 0.15, 1))));
        bg.push_back (element (rectPath (457, 0, 336, 350), bounds (457, 0, 336, 350),
                               fillStyle (rgba (0.99, 0.99, 0.99, 1)), fillStyle (rgba (0.13, 0.13, 0.13, 1))));
        // 2 paper grain over both panes
        {
            PathWriter p;
            p.rect (0, 0, 395, 350);
            p.rect (457, 0, 336, 350);
            json light = {{"fill", solid (rgba (0, 0, 0, 0))}, {"pattern", {0.05, "@tile-light"}}};
            json dark = {{"fill", solid (rgba (0, 0, 0, 0))}, {"pattern", {0.05, "@tile-dark"}}};
            bg.push_back (element (p.str(), bounds (0, 0, 793, 350), light, dark));
        }
        // 3 centre strip
        {
            const json a = col["accent"];
            json g = json::array ({"g", json::array ({json::array ({a, {426, 0}}), json::array ({a, {426, 380}})})});
            bg.push_back (element (rectPath (395, 0, 62, 380), bounds (395, 0, 62, 380), json {{"fill", g}}));
        }
        // 4 advanced bottom bar
        bg.push_back (element (rectPath (457, 350, 336, 30), bounds (457, 350, 336, 30),
                               fillStyle (col["deepAccent"])));
        // 5 white bar under the power switch
        bg.push_back (element (rectPath (401, 240, 50, 4), bounds (401, 240, 50, 4),
                               fillStyle (rgba (1, 1, 1, 0.28))));
        // 6 product name in the bottom bar, 7 logotype in the centre strip
        {
            TextStyle st {8.5, true, Align::left};
            std::string d = placeText (fonts, {labels["footer"]}, "en", 467, 357, 200, 16, st);
            bg.push_back (element (d, bounds (467, 357, 200, 16), fillStyle (rgba (1, 1, 1, 0.3))));
            TextStyle lt {21, true, Align::centre};
            std::string l = placeText (fonts, {labels["logotype"]}, "en", 403, 14, 46, 24, lt);
            bg.push_back (element (l, bounds (403, 14, 46, 24), fillStyle (rgba (1, 1, 1, 1))));
        }
        // 8 thin guide lines between the faders' columns and rows
        {
            PathWriter p;
            for (double x : {79.0, 158.0, 237.0, 316.0})
                p.rect (x - 0.05, 44, 0.1, 238);
            for (double x : {513.0, 569.0, 625.0, 681.0, 737.0})
                p.rect (x - 0.05, 44, 0.1, 112);
            p.rect (465, 164, 320, 0.1);
            p.rect (465, 222, 320, 0.1);
            p.rect (465, 286, 320, 0.1);
            json d = {{"stroke", {rgba (0.3, 0.3, 0.3, 1), 0.1}}, {"fill", solid (rgba (0, 0, 0, 0))}};
            json k = {{"stroke", {rgba (1, 1, 1, 0.8), 0.1}}, {"fill", solid (rgba (0, 0, 0, 0))}};
            bg.push_back (element (p.str(), bounds (0, 0, 793, 380), d, k));
        }
        // 9 column and band lines
        {
            PathWriter p;
            p.move (0, 36);
            p.line (395, 36);
            p.move (0, 290);
            p.line (395, 290);
            p.move (0, 350);
            p.line (395, 350);
            p.move (457, 36);
            p.line (793, 36);
            json d = {{"stroke", {rgba (0.25, 0.25, 0.25, 0.6), 0.3}}, {"fill", solid (rgba (0, 0, 0, 0))}};
            json k = {{"stroke", {rgba (1, 1, 1, 0.35), 0.3}}, {"fill", solid (rgba (0, 0, 0, 0))}};
            bg.push_back (element (p.str(), bounds (0, 0, 793, 380), d, k));
        }
        // 10..13 shadows: each shape lies outside its clip so that only the blur enters
        auto shadow = [&] (double x, double y, double w, double h, int radius, double alpha, json clip,
                           double darkAlpha)
        {
            json def = {{"fill", solid (rgba (0, 0, 0, 1))},
                        {"shadow", {radius, alpha, clip, rgba (0, 0, 0, 1)}}};
            json dark = {{"fill", solid (rgba (0, 0, 0, 1))},
                         {"shadow", {radius, darkAlpha, clip, rgba (0, 0, 0, 1)}}};
            return element (rectPath (x, y, w, h), bounds (x, y, w, h), def, dark);
        };
        bg.push_back (shadow (395, 0, 62, 380, 8, 0.22, {0, 0, 395, 380}, 0.5));   // strip onto main pane
        bg.push_back (shadow (395, 0, 62, 380, 8, 0.22, {457, 0, 336, 380}, 0.5)); // strip onto advanced pane
        bg.push_back (shadow (457, 350, 336, 30, 4, 0.18, {457, 0, 336, 350}, 0.45)); // bottom bar upwards
        bg.push_back (shadow (0, 350, 395, 30, 14, 0.10, {0, 0, 395, 350}, 0.3));    // toolbar upwards
        return bg;
    }

    json clumpLabels()
    {
        json out;
        for (const auto& lang : languages)
        {
            json list = json::array();
            for (const auto& c : panel["clumps"])
            {
                const std::string key = c["key"];
                const std::string style = c["style"];
                const double x = c["box"][0], y = c["box"][1], w = c["box"][2], h = c["box"][3];
                TextStyle st;
                st.bold = true;
                st.size = style == "main" ? 13.5 : (style == "group" ? 12.5 : 10.5);
                if (lang == "emoji")
                    st.size = style == "side" ? 18 : 20;
                std::string d = placeText (fonts, {labels["clump"][key][lang]}, lang, x + 3, y, w - 6, h, st);
                list.push_back (textElement (d, bounds (0, 0, 793, 380), style == "main" ? "mainText" : "groupText"));
            }
            out[lang] = list;
        }
        return out;
    }

    // Position of a value along a fader's axis, in the control's coordinates.
    static double axisPos (const json& c, double v)
    {
        const double lo = c["range"][0], hi = c["range"][1];
        double n = c.value ("log", false) ? std::log (v / lo) / std::log (hi / lo) : (v - lo) / (hi - lo);
        const bool horizontal = c.value ("horizontal", false);
        const double ix = c["inner"][0], iy = c["inner"][1], iw = c["inner"][2], ih = c["inner"][3];
        return horizontal ? ix + n * iw : iy + (1.0 - n) * ih;
    }

    static std::string markText (double v)
    {
        char buf[32];
        if (std::fabs (v - std::round (v)) < 1e-6)
            std::snprintf (buf, sizeof buf, "%d", (int) std::lround (v));
        else
            std::snprintf (buf, sizeof buf, "%.1f", v);
        return buf;
    }

    // Where a vertical fader's ruler line runs, and half the width of the thumb that
    // rides on it; the editor's slider sizes its thumb by the same rule.
    static double rulerX (const json& c)
    {
        const double w = c["frame"][2];
        return c.value ("axis", w * 0.5 - 7.0);
    }
    static double thumbHalf (const json& c)
    {
        const double w = c["frame"][2], x = rulerX (c);
        return std::min (19.0, std::min (x, w - x) - 1.0);
    }

    // WCAG contrast of two opaque colours given as 0..1 channels.
    static double luminance (const std::vector<double>& c)
    {
        double l = 0;
        const double weights[] = {0.2126, 0.7152, 0.0722};
        for (int i = 0; i < 3; ++i)
        {
            const double v = c[(size_t) i];
            l += weights[i] * (v <= 0.03928 ? v / 12.92 : std::pow ((v + 0.055) / 1.055, 2.4));
        }
        return l;
    }
    static double contrast (const std::vector<double>& a, const std::vector<double>& b)
    {
        const double la = luminance (a), lb = luminance (b);
        return (std::max (la, lb) + 0.05) / (std::min (la, lb) + 0.05);
    }

    // The control's colour, desaturated by amount, darkened just enough to read at
    // the given contrast on the thumb's face.
    static json thumbText (const json& rgb, const std::vector<double>& face, double minContrast, double desaturate)
    {
        std::vector<double> c {(double) rgb[0] / 255.0, (double) rgb[1] / 255.0, (double) rgb[2] / 255.0};
        const double grey = 0.299 * c[0] + 0.587 * c[1] + 0.114 * c[2];
        for (auto& v : c)
            v += (grey - v) * desaturate;
        for (double k = 1.0; k > 0.0; k -= 0.01)
        {
            const std::vector<double> d {c[0] * k, c[1] * k, c[2] * k};
            if (contrast (d, face) >= minContrast)
                return rgba (std::round (d[0] * 255.0) / 255.0, std::round (d[1] * 255.0) / 255.0,
                             std::round (d[2] * 255.0) / 255.0, 1.0);
        }
        return rgba (0, 0, 0, 1);
    }

    // Ticks every minor step and numbered ticks every major step of a level bar,
    // on the bar's outer side, numbers right-aligned against the ticks.
    void meterScale (PathWriter& p, const json& c)
    {
        const json& m = c["meter"];
        const double barX = m["bar"][0];
        const double lo = m["range"][0], hi = m["range"][1];
        const double minor = m["minor"], major = m["major"];
        const double iy = c["inner"][1], ih = c["inner"][3];
        const double numberRight = barX - 4.5;
        for (double v = hi; v >= lo - 1e-6; v -= minor)
        {
            const double y = iy + (hi - v) / (hi - lo) * ih;
            const bool numbered = std::fabs (std::remainder (v, major)) < 1e-6;
            const double length = numbered ? 3.5 : 2.0;
            p.rect (barX - 0.5 - length, y - 0.3, length, 0.6);
            if (numbered)
                p.append (placeText (fonts, {markText (v)}, "en", 1.0, y - 5.0, numberRight - 1.0, 10.0,
                                     TextStyle {7.0, false, Align::right}));
        }
    }

    json tracks()
    {
        json out;
        for (int id : panel["sliders"])
        {
            const json& c = panel["controls"][std::to_string (id)];
            const bool horizontal = c.value ("horizontal", false);
            const double w = c["frame"][2];
            const double ix = c["inner"][0], iy = c["inner"][1], iw = c["inner"][2], ih = c["inner"][3];
            const double lo = c["range"][0], hi = c["range"][1];
            PathWriter p;
            // Ticks: minor ones along the range, long ones at the marks that carry numbers.
            std::vector<double> minors;
            if (c.value ("log", false))
                minors = {0.1, 0.2, 0.5, 1, 2, 4, 8};
            else
                for (double v = lo; v <= hi + 1e-6; v += (double) c["minor"])
                    minors.push_back (v);
            if (! horizontal)
            {
                // Numbers stand clear of the thumb's reach, so that it never covers them.
                const double cx = rulerX (c);
                const double numbersLeft = cx + thumbHalf (c) + 2.5;
                const TextStyle numStyle {8.5, false, Align::left};
                p.move (cx, iy + ih);
                p.line (cx + 0.5, iy + ih);
                p.line (cx + 0.5, iy);
                p.line (cx - 0.5, iy);
                p.line (cx - 0.5, iy + ih);
                p.close();
                for (double v : minors)
                    p.rect (cx - 3.5, axisPos (c, v) - 0.3, 7, 0.6);
                for (const auto& m : c["marks"])
                {
                    const double y = axisPos (c, m[0]);
                    p.rect (cx - 6, y - 0.5, 12, 1);
                    const double top = m[1], bottom = m[2];
                    p.append (placeText (fonts, {markText (m[0])}, "en", numbersLeft, top, w - numbersLeft - 1.0,
                                         bottom - top, numStyle));
                }
                if (c.contains ("meter"))
                    meterScale (p, c);
            }
            else
            {
                // Numbers below the thumb's reach: it is 20 units thick around the line.
                const double cy = id == 6 ? 24.0 : 18.0;
                p.rect (ix, cy - 0.5, iw, 1);
                for (double v : minors)
                    p.rect (axisPos (c, v) - 0.3, cy - 3.5, 0.6, 7);
                for (const auto& m : c["marks"])
                {
                    const double x = axisPos (c, m[0]);
                    p.rect (x - 0.5, cy - 6, 1, 12);
                    const double left = m[1], right = m[2];
                    p.append (placeText (fonts, {markText (m[0])}, "en", left - 8, cy + 12, right - left + 16, 10,
                                         TextStyle {8.5, false, Align::centre}));
                }
            }
            auto ruler = colourPair ("ruler");
            const json b = frameFromBottom (c["frame"]);
            // Value text in the thumb: the control's colour, dark enough to read on the
            // thumb's face; the second strength is the dimmed control's.
            const std::vector<double> lightFace {1.0, 1.0, 1.0}, darkFace {0xf4 / 255.0, 0xf4 / 255.0, 0xf4 / 255.0};
            json list = json::array();
            list.push_back (element (p.str(), b, fillStyle (ruler["default"]), fillStyle (ruler["dark"])));
            list.push_back (element ("", b, fillStyle (thumbText (c["light"], lightFace, 4.6, 0.0)),
                                     fillStyle (thumbText (c["dark"], darkFace, 4.6, 0.0))));
            list.push_back (element ("", b, fillStyle (thumbText (c["light"], lightFace, 3.0, 0.6)),
                                     fillStyle (thumbText (c["dark"], darkFace, 3.0, 0.6))));
            out[std::to_string (id)] = list;
        }
        return out;
    }

    // Caption box of a control, in its own coordinates.
    static std::vector<double> captionBox (int id, const json& c)
    {
        const double w = c["frame"][2];
        // The Mix caption ends where the thumb at 0 % begins.
        if (id == 6)
            return {4, 14, 50, 22};
        if (id == 9 || id == 11 || id == 14)
            return {4, 38, w - 8, 18};
        if (c.value ("horizontal", false))
            return {4, 42, w - 8, 18};
        return {4, 104, w - 8, 20};
    }

    json paramLabels()
    {
        json out;
        for (int id : panel["captioned"])
        {
            const std::string sid = std::to_string (id);
            const json& c = panel["controls"][sid];
            const auto box = captionBox (id, c);
            json perLang;
            for (const auto& lang : languages)
            {
                TextStyle st {lang == "emoji" ? 17.0 : 10.5, false, Align::centre};
                std::string d = placeText (fonts, {labels["param"][sid][lang]}, lang, box[0], box[1], box[2], box[3], st);
                perLang[lang] = json::array ({textElement (d, frameFromBottom (c["frame"]), "caption")});
            }
            out[sid] = perLang;
        }
        return out;
    }

    json stateTexts()
    {
        json out;
        for (auto& [sid, states] : labels["states"].items())
        {
            const int id = std::stoi (sid);
            const json& c = panel["controls"][sid];
            json perValue;
            for (size_t v = 0; v < states.size(); ++v)
            {
                json perLang;
                for (auto& [lang, text] : states[v].items())
                {
                    json b;
                    std::string d;
                    json def, dark;
                    if (id == 0)
                    {
                        d = placeText (fonts, {text}, "en", 0, 0, 34, 38, TextStyle {30, false, Align::centre});
                        b = bounds (0, 0, 34, 38);
                        def = fillStyle (rgba (1, 1, 1, v == 1 ? 0.95 : 0.45));
                    }
                    else if (id == 16)
                    {
                        // The control centres this box on the line where the pane meets
                        // its bottom bar; the word sits in the box's lower half, on the bar.
                        d = placeText (fonts, {text}, "en", 0, 14, 26, 16, TextStyle {14, true, Align::centre});
                        b = bounds (0, 0, 26, 30);
                        def = fillStyle (rgba (1, 1, 1, v == 1 ? 1.0 : 0.5));
                    }
                    else if (id == 18)
                    {
                        PathWriter p;
                        p.roundedRect (0, 0, 2, 16, 1);
                        d = p.str();
                        b = bounds (0, 0, 2, 16);
                        def = fillStyle (byteColour (c["light"], v == 1 ? 1.0 : 0.4));
                        dark = fillStyle (byteColour (c["dark"], v == 1 ? 1.0 : 0.4));
                    }
                    else
                    {
                        const double maxW = id == 9 ? 45 : 82;
                        double ink = 0;
                        const TextStyle st {lang == "emoji" ? 18.0 : 11.5, id != 9, Align::left};
                        placeText (fonts, {text}, lang, 0, 0, maxW, 22, st, &ink);
                        const double wBox = std::ceil (std::max (ink, id == 9 ? 39.0 : 20.0));
                        d = placeText (fonts, {text}, lang, 0, 0, wBox, 22,
                                       TextStyle {st.size, st.bold, Align::centre});
                        b = bounds (0, 0, wBox, 22);
                        def = fillStyle (byteColour (c["light"], 1.0));
                        dark = fillStyle (byteColour (c["dark"], 1.0));
                    }
                    perLang[lang] = json::array ({element (d, b, def, dark)});
                }
                perValue[std::to_string (v)] = perLang;
            }
            out[sid] = perValue;
        }
        return out;
    }

    json hud()
    {
        json options;
        const json frame = frameFromBottom (panel["hud"]);
        const double w = panel["hud"][2], h = panel["hud"][3];
        for (size_t o = 0; o < labels["hud"].size(); ++o)
        {
            json perLang;
            for (const auto& lang : languages)
            {
                // One row per option, the first on top: each is a button of its own.
                std::vector<std::string> lines = labels["hud"][o][lang];
                std::string line;
                for (const auto& word : lines)
                    line += (line.empty() ? "" : " ") + word;
                const bool emoji = lang == "emoji";
                const double rowH = (h - 2.0) / (double) labels["hud"].size();
                std::string d = placeText (fonts, {line}, lang, 3, 1 + rowH * (double) o, w - 6, rowH,
                                           TextStyle {emoji ? 10.0 : 8.5, ! emoji, Align::centre});
                perLang[lang] = json::array ({element (d, frame, fillStyle (rgba (1, 1, 1, o == 0 ? 1.0 : 0.2)))});
            }
            options[std::to_string (o)] = perLang;
        }
        return json {{"0", options}};
    }

    json glossonyms()
    {
        json out;
        for (const auto& lang : languages)
        {
            std::string d = placeText (fonts, {labels["glossonyms"][lang]}, lang, 8, 0, 88, 24,
                                       TextStyle {13, false, Align::left});
            out[lang] = json::array ({element (d, bounds (0, 0, 100, 24), fillStyle (rgba (0.45, 0.45, 0.45, 1)))});
        }
        return out;
    }

    json nameplate()
    {
        std::string d = placeText (fonts, {labels["nameplate"]}, "en", 10, 10, 355, 92.5,
                                   TextStyle {48, true, Align::centre});
        return json::array ({element (d, bounds (0.0, 0.0, 375.0, 112.5), fillStyle (rgba (1, 1, 1, 0.9)))});
    }

    json build()
    {
        json doc;
        doc["bg"] = background();
        doc["clump-labels"] = clumpLabels();
        doc["tracks"] = tracks();
        doc["param-labels"] = paramLabels();
        doc["nameplate"] = nameplate();
        doc["autoglossonyms"] = glossonyms();
        doc["param-string-translations"] = stateTexts();
        doc["hud-controls"] = hud();
        doc["md5"] = "";
        return doc;
    }
};

json readJson (const std::string& file)
{
    std::ifstream in (file);
    if (! in)
        throw std::runtime_error ("cannot read " + file);
    return json::parse (in);
}
} // namespace

int main (int argc, char** argv)
{
    if (argc != 4)
    {
        std::cerr << "usage: drawgen <artwork-dir> <fonts-dir> <out.json>\n";
        return 2;
    }
    try
    {
        FT_Init_FreeType (&ftLibrary);
        Generator g;
        g.labels = readJson (std::string (argv[1]) + "/labels.json");
        g.panel = readJson (std::string (argv[1]) + "/panel.json");
        for (const auto& l : g.labels["languages"])
            g.languages.push_back (l);
        g.fonts.load (argv[2]);
        std::ofstream out (argv[3]);
        out << g.build().dump();
    }
    catch (const std::exception& e)
    {
        std::cerr << "drawgen: " << e.what() << "\n";
        return 1;
    }
    return 0;
}
