#include "state/ParameterCatalogue.h"
#include "state/ParameterBounds.h"
#include "state/ParameterRange.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <set>
#include <string>

namespace
{
const ParameterSpec& row (ParameterId id)
{
    return ParameterCatalogue::row (id);
}

bool isSwitch (const ParameterSpec& p)
{
    return !p.stateLabels.empty();
}

int toByte (float c)
{
    return static_cast<int> (c * 255.996f);
}

struct Bytes
{
    int r, g, b;
};

void expectBytes (const ParameterColour& c, Bytes expected, ParameterId id)
{
    EXPECT_EQ (toByte (c.red), expected.r) << "id " << id;
    EXPECT_EQ (toByte (c.green), expected.g) << "id " << id;
    EXPECT_EQ (toByte (c.blue), expected.b) << "id " << id;
}
} // namespace

TEST (ParameterCatalogue, IdsIdentifiersAndKeysAreUnique)
{
    std::set<std::string> identifiers, keys, names;
    for (ParameterId id = 0; id < kNumParameters; ++id)
    {
        const ParameterSpec& p = row (id);
        EXPECT_EQ (p.id, id);
        identifiers.insert (p.identifier);
        keys.insert (p.shortKey);
        names.insert (p.name);
        EXPECT_FALSE (p.shortKey.empty());

        std::string stripped;
        for (char c : p.name)
            if (std::isalnum (static_cast<unsigned char> (c)))
                stripped += c;
        EXPECT_EQ (p.identifier, stripped) << "identifier is the name without blanks and punctuation";
    }
    EXPECT_EQ (identifiers.size(), kNumParameters);
    EXPECT_EQ (keys.size(), kNumParameters);
    EXPECT_EQ (names.size(), kNumParameters);
}

TEST (ParameterCatalogue, RangesDefaultsAndStepsAreConsistent)
{
    for (ParameterId id = 0; id < kNumParameters; ++id)
    {
        const ParameterSpec& p = row (id);
        SCOPED_TRACE ("id " + std::to_string (id));
        EXPECT_LT (p.min, p.max);
        EXPECT_GE (p.defaultValue, p.min);
        EXPECT_LE (p.defaultValue, p.max);
        EXPECT_EQ (snapToStep (id, p.defaultValue), p.defaultValue) << "default lies on the step grid";

        const double intervals = (static_cast<double> (p.max) - p.min) / p.step;
        EXPECT_NEAR (intervals, std::round (intervals), 1e-4) << "step divides the range";
        EXPECT_EQ (p.numSteps, static_cast<float> (std::round (intervals) + 1.0)) << "both ends counted";

        for (float larger : {p.mediumStep, p.coarseStep})
        {
            const double multiple = larger / static_cast<double> (p.step);
            EXPECT_NEAR (multiple, std::round (multiple), 1e-4);
            EXPECT_GE (larger, p.step);
        }
    }
}

TEST (ParameterCatalogue, InvalidIdHasNoRow)
{
    EXPECT_EQ (ParameterBounds::find (kNumParameters), nullptr);
    EXPECT_THROW (row (kNumParameters), std::out_of_range);
}

TEST (ParameterCatalogue, ColoursMatchTheDesignBytes)
{
    const Bytes white{255, 255, 255}, grey{101, 101, 101}, greyDark{126, 126, 126};
    const Bytes red{205, 31, 40}, redDark{226, 61, 70}, rust{181, 55, 61}, rustDark{203, 84, 90};
    const Bytes rustSwitchDark{215, 123, 128}, hqDark{161, 24, 31};
    const Bytes listen{50, 50, 50}, listenDark{178, 178, 178};

    const std::vector<std::pair<std::vector<ParameterId>, std::pair<Bytes, Bytes>>> groups{
        {{0}, {white, white}},
        {{1, 5, 17, 19, 20}, {grey, greyDark}},
        {{2, 3, 4, 6}, {red, redDark}},
        {{7, 8, 10, 12, 13, 15}, {rust, rustDark}},
        {{9, 11, 14}, {rust, rustSwitchDark}},
        {{16}, {red, hqDark}},
        {{18}, {listen, listenDark}},
    };
    std::size_t seen = 0;
    for (const auto& [ids, pair] : groups)
        for (ParameterId id : ids)
        {
            expectBytes (row (id).lightColour, pair.first, id);
            expectBytes (row (id).darkColour, pair.second, id);
            ++seen;
        }
    EXPECT_EQ (seen, kNumParameters);
}

TEST (ParameterCatalogue, FocusOrderWalksEveryControlOnce)
{
    const auto& order = ParameterCatalogue::focusOrder();
    std::set<ParameterId> distinct (order.begin(), order.end());
    EXPECT_EQ (distinct.size(), kNumParameters);
    EXPECT_LT (*distinct.rbegin(), kNumParameters);

    for (std::uint32_t position = 0; position < kNumParameters; ++position)
        EXPECT_EQ (row (order[position]).order, position);

    // The power switch comes right behind the six main-panel faders.
    EXPECT_EQ (order[6], 0u);
    for (std::uint32_t position = 0; position < 6; ++position)
        EXPECT_EQ (row (order[position]).pane, 0u);
}

TEST (ParameterCatalogue, SwitchesCarryOneLabelPerState)
{
    for (ParameterId id = 0; id < kNumParameters; ++id)
    {
        const ParameterSpec& p = row (id);
        if (!isSwitch (p))
        {
            EXPECT_TRUE (p.longLabels.empty());
            EXPECT_FALSE (p.discrete);
            continue;
        }
        EXPECT_TRUE (p.discrete);
        EXPECT_EQ (p.min, 0.0f);
        EXPECT_EQ (static_cast<std::size_t> (p.numSteps), p.stateLabels.size());
        ASSERT_EQ (p.longLabels.size(), p.stateLabels.size());
        for (std::size_t i = 0; i < p.stateLabels.size(); ++i)
            EXPECT_EQ (p.longLabels[i], p.name + ": " + p.stateLabels[i]);
    }
    // The signal path takes state 1 as the 1990's type.
    EXPECT_EQ (row (14).stateLabels[1], "1990's Digital");
    EXPECT_EQ (row (11).longLabels[0], "Wow/Flutter Speed: 33.3 RPM");
    EXPECT_EQ (row (9).stateFrames.size(), 2u);
}

TEST (ParameterCatalogue, ScaleMarksSitOnTheirValues)
{
    for (ParameterId id = 0; id < kNumParameters; ++id)
    {
        const ParameterSpec& p = row (id);
        SCOPED_TRACE ("id " + std::to_string (id));
        if (isSwitch (p))
        {
            EXPECT_TRUE (p.scaleMarks.empty());
            continue;
        }
        ASSERT_GE (p.scaleMarks.size(), 3u) << "every fader shows its ends and a middle";
        EXPECT_EQ (p.scaleMarks[0].value, p.min);
        EXPECT_EQ (p.scaleMarks[1].value, p.max);
        for (const ScaleMark& mark : p.scaleMarks)
        {
            const float n = toNormalised (id, mark.value);
            const float centre = p.horizontal ? p.innerFrame.x + n * p.innerFrame.width
                                              : p.innerFrame.y + (1.0f - n) * p.innerFrame.height;
            EXPECT_NEAR ((mark.top + mark.bottom) / 2.0f, centre, 0.02f) << "mark " << mark.value;
            EXPECT_NEAR (mark.bottom - mark.top, 16.0f, 1e-4f);
        }
    }
}

TEST (ParameterCatalogue, PowerSwitchEnablesEverythingElse)
{
    const ParameterSpec& power = row (0);
    ASSERT_EQ (power.enableList.size(), kNumParameters - 1);
    for (ParameterId i = 0; i < power.enableList.size(); ++i)
        EXPECT_EQ (power.enableList[i], i + 1);
    ASSERT_EQ (power.enableMap.size(), 1u);
    EXPECT_EQ (power.enableMap.at (1.0f), power.enableList);

    for (ParameterId id = 1; id < kNumParameters; ++id)
        EXPECT_TRUE (row (id).enableMap.empty());
    EXPECT_EQ (row (16).labelScale, 1.2f);
}

TEST (ParameterCatalogue, ExtraTables)
{
    const auto& overlays = ParameterCatalogue::toggleOverlays();
    ASSERT_EQ (overlays.size(), 1u);
    EXPECT_EQ (overlays[0].target, 13u);
    ASSERT_EQ (overlays[0].states.size(), 2u);
    EXPECT_EQ (overlays[0].states[0].label, "Noise On");
    EXPECT_EQ (overlays[0].states[1].value, row (13).min);
    EXPECT_EQ (overlays[0].states[1].label, "Noise Off");

    ASSERT_EQ (ParameterCatalogue::meters().size(), 1u);
    EXPECT_EQ (ParameterCatalogue::meters()[0].name, "Gain Reduction");
    EXPECT_EQ (hostMeterCategory (ParameterCatalogue::meters()[0].kind), 0x20002u);
    EXPECT_EQ (hostMeterCategory (5), 0x20005u);
    EXPECT_EQ (hostMeterCategory (9), 0x20005u);
}

TEST (ParameterCatalogue, ProductConstants)
{
    const ProductInfo& info = ParameterCatalogue::product();
    EXPECT_EQ (info.displayName, "Zolk Compressor");
    EXPECT_EQ (info.alternateNames.front(), "Hvn Zolk Compressor 3");
    EXPECT_EQ (info.alternateNames.back(), "Z");
    for (std::size_t i = 1; i < info.alternateNames.size(); ++i)
        EXPECT_LE (info.alternateNames[i].size(), info.alternateNames[i - 1].size());
    EXPECT_EQ (info.pluginNumber, "0002");
    EXPECT_EQ (info.pluginCode, "TRQ" + info.pluginNumber);
#ifdef JucePlugin_VersionString
    EXPECT_EQ (info.version, JucePlugin_VersionString);
#endif
    EXPECT_EQ (info.version, "3.5.0");
}

TEST (ParameterCatalogue, LayoutDefaultsOnlyForMonoInput)
{
    EXPECT_TRUE (ParameterCatalogue::layoutDefault (9, 1, 1));
    EXPECT_EQ (ParameterCatalogue::layoutDefault (9, 1, 2).valueOr (-1.0f), 1.0f);
    EXPECT_FALSE (ParameterCatalogue::layoutDefault (9, 2, 2));
    EXPECT_FALSE (ParameterCatalogue::layoutDefault (1, 1, 1));
    EXPECT_FALSE (ParameterCatalogue::layoutDefault (kNumParameters, 1, 1));
    for (const LayoutDefault& entry : ParameterCatalogue::layoutDefaults())
        EXPECT_EQ (snapAndClamp (entry.id, entry.value), entry.value);
}
