#include "state/ParameterCatalogue.h"

#include "state/ParameterBounds.h"

#include <cstddef>
#include <stdexcept>

// The product's data. Ranges, defaults, steps and URL keys come from ParameterBounds;
// every other column is laid out below in groups, one line per parameter, and the
// rows are put together once on first use.

namespace
{
struct Identity
{
    ParameterId id;
    std::uint32_t order;
    const char* name;
    const char* identifier;
    std::uint32_t pane; // 0 main panel, 1 header, 2 advanced pane
};

constexpr Identity identities[] = {
    {0, 6, "Master On/Off", "MasterOnOff", 1},
    {1, 0, "Input Gain", "InputGain", 0},
    {2, 1, "Compression Amount", "CompressionAmount", 0},
    {3, 2, "Wow/Flutter Amount", "WowFlutterAmount", 0},
    {4, 3, "Lo-Fi Amount", "LoFiAmount", 0},
    {5, 4, "Output Gain", "OutputGain", 0},
    {6, 5, "Master Mix", "MasterMix", 0},
    {7, 7, "Comp Attack Time Constant", "CompAttackTimeConstant", 2},
    {8, 8, "Comp Release Time Constant", "CompReleaseTimeConstant", 2},
    {9, 9, "Comp Stereo Link", "CompStereoLink", 2},
    {10, 10, "Wow/Flutter Mix", "WowFlutterMix", 2},
    {11, 12, "Wow/Flutter Speed", "WowFlutterSpeed", 2},
    {12, 11, "Wow/Flutter Phase", "WowFlutterPhase", 2},
    {13, 13, "Lo-Fi Noise Gain", "LoFiNoiseGain", 2},
    {14, 15, "Lo-Fi Type", "LoFiType", 2},
    {15, 14, "Lo-Fi Crunch", "LoFiCrunch", 2},
    {16, 20, "HQ Mode", "HQMode", 2},
    {17, 19, "Digital Ref Level", "DigitalRefLevel", 2},
    {18, 16, "Sidechain Listen", "SidechainListen", 2},
    {19, 17, "Sidechain External", "SidechainExternal", 2},
    {20, 18, "Sidechain Tilt", "SidechainTilt", 2},
};

struct Display
{
    ParameterId id;
    std::uint32_t valueKind;
    std::uint32_t toggleKind;
    std::uint32_t controlStyle;
    bool discrete;
    bool logarithmic;
    bool horizontal;
    std::uint32_t widthHint;
    float labelScale;
    const char* unit;
    const char* format;
    float numSteps; // what the host is told, kept as first published
};

constexpr Display displays[] = {
    {0, 2, 1, 5, true, false, false, 0, 0.0f, "", "%1.0f", 2.0f},
    {1, 4, 0, 0, false, false, false, 40, 0.0f, "dB", "%0.1f", 361.0f},
    {2, 1, 0, 0, false, false, false, 30, 0.0f, "%", "%1.0f", 101.0f},
    {3, 1, 0, 0, false, false, false, 30, 0.0f, "%", "%1.0f", 101.0f},
    {4, 1, 0, 0, false, false, false, 30, 0.0f, "%", "%1.0f", 101.0f},
    {5, 4, 0, 0, false, false, false, 40, 0.0f, "dB", "%0.1f", 361.0f},
    {6, 1, 0, 0, false, false, true, 30, 0.0f, "%", "%1.0f", 101.0f},
    {7, 9, 0, 0, false, true, false, 26, 0.0f, "x", "%0.1f", 80.0f},
    {8, 9, 0, 0, false, true, false, 26, 0.0f, "x", "%0.1f", 80.0f},
    {9, 0, 7, 1, true, false, false, 0, 0.0f, "", "%1.0f", 2.0f},
    {10, 1, 0, 0, false, false, false, 30, 0.0f, "%", "%1.0f", 101.0f},
    {11, 0, 3, 1, true, false, false, 0, 0.0f, "", "%1.0f", 3.0f},
    {12, 3, 0, 0, false, false, false, 27, 0.0f, "\xc2\xb0", "%1.0f", 361.0f},
    {13, 4, 0, 0, false, false, false, 40, 0.0f, "dB", "%0.1f", 1081.0f},
    {14, 0, 3, 1, true, false, false, 0, 0.0f, "", "%1.0f", 3.0f},
    {15, 1, 0, 0, false, false, false, 30, 0.0f, "%", "%1.0f", 101.0f},
    {16, 0, 1, 3, true, false, false, 0, 1.2f, "", "%1.0f", 2.0f},
    {17, 4, 0, 0, false, false, true, 40, 0.0f, "dB", "%0.1f", 361.0f},
    {18, 2, 1, 4, true, false, false, 0, 0.0f, "", "%1.0f", 2.0f},
    {19, 1, 0, 0, false, false, true, 30, 0.0f, "%", "%1.0f", 101.0f},
    {20, 1, 0, 0, false, false, true, 35, 0.0f, "%", "%1.0f", 201.0f},
};

struct Geometry
{
    ParameterId id;
    ParameterRect frame;
    ParameterRect innerFrame;
};

constexpr Geometry geometries[] = {
    {0, {395, 180, 62, 62}, {6, 6, 50, 50}},    {1, {0, 36, 79, 254}, {0, 18, 79, 218}},
    {2, {79, 36, 79, 254}, {0, 18, 79, 218}},   {3, {158, 36, 79, 254}, {0, 18, 79, 218}},
    {4, {237, 36, 79, 254}, {0, 18, 79, 218}},  {5, {316, 36, 79, 254}, {0, 18, 79, 218}},
    {6, {0, 290, 395, 60}, {79, 0, 237, 60}},   {7, {457, 36, 56, 128}, {0, 18, 56, 78}},
    {8, {513, 36, 56, 128}, {0, 18, 56, 78}},   {9, {457, 164, 112, 58}, {14, 8, 84, 28}},
    {10, {569, 36, 56, 128}, {0, 18, 56, 78}},  {11, {569, 164, 112, 58}, {17, 7, 78, 30}},
    {12, {625, 36, 56, 128}, {0, 18, 56, 78}},  {13, {681, 36, 56, 128}, {0, 18, 56, 78}},
    {14, {681, 164, 112, 58}, {17, 7, 78, 30}}, {15, {737, 36, 56, 128}, {0, 18, 56, 78}},
    {16, {707, 326, 84, 54}, {36, 6, 42, 42}},  {17, {457, 286, 302.4f, 64}, {25, 0, 252.4f, 54}},
    {18, {511, 222, 30, 40}, {6, 6, 18, 30}},   {19, {541, 222, 132, 64}, {25, 0, 82, 54}},
    {20, {673, 222, 120, 64}, {25, 0, 70, 54}},
};

// Colours as the designer's 8-bit values; the rows hold them as bytes / 255.
struct Rgb
{
    int red;
    int green;
    int blue;
};

constexpr Rgb white{255, 255, 255};
constexpr Rgb grey{101, 101, 101};
constexpr Rgb greyDark{126, 126, 126};
constexpr Rgb red{205, 31, 40};
constexpr Rgb redDark{226, 61, 70};
constexpr Rgb rust{181, 55, 61};
constexpr Rgb rustDark{203, 84, 90};
constexpr Rgb rustSwitchDark{215, 123, 128};
constexpr Rgb hqDark{161, 24, 31};
constexpr Rgb listen{50, 50, 50};
constexpr Rgb listenDark{178, 178, 178};

struct Colours
{
    ParameterId id;
    Rgb light;
    Rgb dark;
};

constexpr Colours colours[] = {
    {0, white, white},    {1, grey, greyDark},       {2, red, redDark},          {3, red, redDark},
    {4, red, redDark},    {5, grey, greyDark},       {6, red, redDark},          {7, rust, rustDark},
    {8, rust, rustDark},  {9, rust, rustSwitchDark}, {10, rust, rustDark},       {11, rust, rustSwitchDark},
    {12, rust, rustDark}, {13, rust, rustDark},      {14, rust, rustSwitchDark}, {15, rust, rustDark},
    {16, red, hqDark},    {17, grey, greyDark},      {18, listen, listenDark},   {19, grey, greyDark},
    {20, grey, greyDark},
};

template<typename Row, std::size_t N>
constexpr bool oneLinePerIdInOrder (const Row (&table)[N])
{
    for (std::size_t i = 0; i < N; ++i)
        if (table[i].id != i)
            return false;
    return N == kNumParameters;
}

static_assert (oneLinePerIdInOrder (identities));
static_assert (oneLinePerIdInOrder (displays));
static_assert (oneLinePerIdInOrder (geometries));
static_assert (oneLinePerIdInOrder (colours));

ParameterColour toColour (Rgb c)
{
    return {static_cast<float> (c.red) / 255.0f, static_cast<float> (c.green) / 255.0f,
            static_cast<float> (c.blue) / 255.0f};
}

// Scale labels: the value, then the extent of its text along the fader. Vertical faders
// run from the top of the inner frame (maximum) to its bottom (minimum), horizontal ones
// from its left (minimum) to its right (maximum); each label is 16 pixels centred on
// its value's position.
std::vector<ScaleMark> scaleMarksOf (ParameterId id)
{
    switch (id)
    {
    case 1:
    case 5:
        return {{-24, 228, 244}, {12, 10, 26}, {0, 82.67f, 98.67f}, {-12, 155.33f, 171.33f}};
    case 2:
    case 3:
    case 4:
        return {{0, 228, 244}, {100, 10, 26}, {50, 119, 135}};
    case 6:
        return {{0, 71, 87}, {100, 308, 324}, {50, 189.5f, 205.5f}};
    case 7:
    case 8:
        return {{0.1f, 88, 104}, {8, 10, 26}, {1, 47.01f, 63.01f}};
    case 10:
    case 15:
        return {{0, 88, 104}, {100, 10, 26}, {50, 49, 65}};
    case 12:
        return {{0, 88, 104}, {360, 10, 26}, {180, 49, 65}};
    case 13:
        return {{-96, 88, 104}, {12, 10, 26}, {-48, 53.33f, 69.33f}};
    case 17:
        return {{-36, 17, 33}, {0, 269.4f, 285.4f}, {-18, 143.2f, 159.2f}};
    case 19:
        return {{0, 17, 33}, {100, 99, 115}, {50, 58, 74}};
    case 20:
        return {{-100, 17, 33}, {100, 87, 103}, {0, 52, 68}};
    default:
        return {};
    }
}

std::vector<std::string> stateLabelsOf (ParameterId id)
{
    switch (id)
    {
    case 0:
    case 9:
    case 16:
    case 18:
        return {"Off", "On"};
    case 11:
        return {"33.3 RPM", "45 RPM", "78 RPM"};
    case 14:
        // The signal path expects this order: not sorted by decade.
        return {"Analog", "1990's Digital", "1980's Digital"};
    default:
        return {};
    }
}

std::vector<SpecialLabel> specialLabelsOf (ParameterId id)
{
    switch (id)
    {
    case 13:
        return {{-96.0f, "Off"}};
    case 19:
        return {{0.0f, "Off"}};
    default:
        return {};
    }
}

std::vector<ParameterId> allButPower()
{
    std::vector<ParameterId> ids;
    for (ParameterId id = 1; id < kNumParameters; ++id)
        ids.push_back (id);
    return ids;
}

ParameterSpec makeRow (ParameterId id)
{
    const Identity& who = identities[id];
    const Display& look = displays[id];
    const Geometry& where = geometries[id];
    const ParameterBounds& range = ParameterBounds::of (id);

    ParameterSpec p;
    p.id = id;
    p.order = who.order;
    p.defaultValue = range.defaultValue;
    p.min = range.min;
    p.max = range.max;
    p.horizontal = look.horizontal;
    p.mediumStep = range.mediumStep;
    p.step = range.step;
    p.coarseStep = range.coarseStep;
    p.name = who.name;
    p.identifier = who.identifier;
    p.labelScale = look.labelScale;
    p.lightColour = toColour (colours[id].light);
    p.darkColour = toColour (colours[id].dark);
    p.frame = where.frame;
    p.innerFrame = where.innerFrame;
    p.shortKey = range.shortKey;
    p.valueKind = look.valueKind;
    p.toggleKind = look.toggleKind;
    p.controlStyle = look.controlStyle;
    p.discrete = look.discrete;
    p.logarithmic = look.logarithmic;
    p.pane = who.pane;
    p.widthHint = look.widthHint;
    p.stateLabels = stateLabelsOf (id);
    for (const auto& state : p.stateLabels)
        p.longLabels.push_back (p.name + ": " + state);
    p.unit = look.unit;
    p.format = look.format;
    p.specialLabels = specialLabelsOf (id);
    p.scaleMarks = scaleMarksOf (id);
    p.numSteps = look.numSteps;

    if (id == 0)
    {
        // While the plug-in is on, every other control is live; off, none is.
        p.enableList = allButPower();
        p.enableMap[1.0f] = p.enableList;
    }
    if (id == 9)
    {
        p.stateFrames = {{475, 177, 33, 18}, {518, 177, 33, 18}};
        p.stateValueMaps = {{1, {{1, 0.0f}}}, {2, {{1, 1.0f}}}};
    }
    return p;
}

std::array<ParameterSpec, kNumParameters> makeRows()
{
    std::array<ParameterSpec, kNumParameters> rows;
    for (ParameterId id = 0; id < kNumParameters; ++id)
        rows[id] = makeRow (id);
    return rows;
}
} // namespace

const std::array<ParameterSpec, kNumParameters>& ParameterCatalogue::rows()
{
    static const std::array<ParameterSpec, kNumParameters> table = makeRows();
    return table;
}

const ParameterSpec& ParameterCatalogue::row (ParameterId id)
{
    if (!isValidParameterId (id))
        throw std::out_of_range ("ParameterCatalogue: no parameter with this id");
    return rows()[id];
}

const std::array<ParameterId, kNumParameters>& ParameterCatalogue::focusOrder()
{
    // The six main-panel faders, the power switch, then the advanced pane.
    static constexpr std::array<ParameterId, kNumParameters> order{1,  2,  3,  4,  5,  6,  0,  7,  8,  9, 10,
                                                                   12, 11, 13, 15, 14, 18, 19, 20, 17, 16};
    return order;
}

const std::vector<ToggleOverlay>& ParameterCatalogue::toggleOverlays()
{
    static const std::vector<ToggleOverlay> overlays{
        {1, 13, {403, 130, 46, 26}, {{0.0f, "Noise On"}, {-96.0f, "Noise Off"}}},
    };
    return overlays;
}

const std::vector<MeterSpec>& ParameterCatalogue::meters()
{
    static const std::vector<MeterSpec> list{{"Gain Reduction", 2}};
    return list;
}

const ProductInfo& ParameterCatalogue::product()
{
    static const ProductInfo info{
        "Zolk Compressor",
        {"Hvn Zolk Compressor 3", "Zolk Compressor 3", "Zolk Compressor 3", "Zolk Comp 3", "Zolk Cpr 3",
         "Zolk Cp 3", "Zolk C 3", "Z Cmp 3", "ZCmp 3", "ZC 3", "ZC 3", "ZC3", "ZC", "Z"},
        "0002",
        "TRQ0002",
        "3.5.0",
    };
    return info;
}

const std::vector<LayoutDefault>& ParameterCatalogue::layoutDefaults()
{
    // With a single input channel the DSP decides the stereo link by itself (off
    // for one output, on when the mono signal feeds two), so the switch starts
    // where the compressor actually is.
    static const std::vector<LayoutDefault> table{
        {9, 1, 1, 0.0f},
        {9, 1, 2, 1.0f},
    };
    return table;
}

HVNChecked<float> ParameterCatalogue::layoutDefault (ParameterId id, int inputs, int outputs)
{
    for (const auto& entry : layoutDefaults())
        if (entry.id == id && entry.inputs == inputs && entry.outputs == outputs)
            return entry.value;
    return {};
}
