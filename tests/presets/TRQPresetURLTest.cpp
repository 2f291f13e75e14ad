#include "presets/TRQPresetURL.h"
#include "core/ProcessorTestSupport.h"
#include "presets/TRQPresetController.h"
#include "state/ParameterCatalogue.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"
#include "state/TRQUndoManager.h"
#include "support/PresetFolder.h"

#include <gtest/gtest.h>

#include <set>

namespace
{
class PresetURLTest : public ::testing::Test
{
protected:
    float real (int id) { return p->getAudioParameter (id).getRealValue(); }
    void set (int id, float value)
    {
        p->getAudioParameter (id).setValueNotifyingHost (toNormalised (static_cast<ParameterId> (id), value));
    }
    juce::String url() { return TRQPresetURL::settingsAsUrl (*p); }
    juce::String query() { return url().fromFirstOccurrenceOf ("/zolk-comp/3.5.0", false, false); }
    void paste (const juce::String& text) { TRQPresetURL::pasteSettings (*p, text); }

    void expectDefaultsExcept (std::initializer_list<int> ids)
    {
        for (const auto& row : ParameterCatalogue::rows())
        {
            if (std::find (ids.begin(), ids.end(), static_cast<int> (row.id)) == ids.end())
            {
                EXPECT_FLOAT_EQ (real (static_cast<int> (row.id)), row.defaultValue)
                    << "parameter " << row.id;
            }
        }
    }

    PresetFolder presets;
    std::unique_ptr<TRQAudioProcessor> p = ProcessorTestSupport::make();
};
} // namespace

TEST_F (PresetURLTest, AtTheDefaultsTheURLEndsWithTheVersion)
{
    EXPECT_EQ (TRQPresetURL::base(), juce::String (ZOLK_MAKER_URL) + "/zolk-comp");
    EXPECT_EQ (url(), TRQPresetURL::base() + "/3.5.0");
}

TEST_F (PresetURLTest, ListsChangedParametersInIdOrderButNeverPower)
{
    set (0, 0.0f);
    set (11, 2.0f);
    set (3, 25.0f);
    set (2, 60.0f);
    set (13, -40.3f);
    set (7, 0.3f);
    EXPECT_EQ (query(), "?cm=60&wf=25&cat=0.3&wfs=2&lfng=-40.3");
}

TEST_F (PresetURLTest, TheURLOfGivenValuesUsesThoseValues)
{
    float values[21];
    for (const auto& row : ParameterCatalogue::rows())
        values[row.id] = row.defaultValue;
    values[20] = -35.0f;
    values[17] = -20.5f;
    EXPECT_EQ (TRQPresetURL::settingsAsUrl (values), TRQPresetURL::base() + "/3.5.0?drl=-20.5&sct=-35");
}

TEST_F (PresetURLTest, PastingSetsTheNamedValuesAndDefaultsTheRest)
{
    set (0, 0.0f);
    set (4, 10.0f);
    paste ("https://example.com/anything/1.0?cm=60&wf=25&wfs=2");
    EXPECT_FLOAT_EQ (real (2), 60.0f);
    EXPECT_FLOAT_EQ (real (3), 25.0f);
    EXPECT_FLOAT_EQ (real (11), 2.0f);
    expectDefaultsExcept ({2, 3, 11});
    EXPECT_FLOAT_EQ (real (0), 1.0f) << "power comes back on";

    paste ("?power=0&cm=10");
    EXPECT_FLOAT_EQ (real (0), 0.0f) << "only a hand-made URL names power";
}

TEST_F (PresetURLTest, BothSyntaxesReadTheSame)
{
    paste ("x/3.5.0?cm:60/wf:30");
    EXPECT_FLOAT_EQ (real (2), 60.0f);
    EXPECT_FLOAT_EQ (real (3), 30.0f);
    paste ("?cm=60&cm=70");
    EXPECT_FLOAT_EQ (real (2), 70.0f) << "later pieces win";
}

TEST_F (PresetURLTest, AnythingElseGivesTheDefaults)
{
    for (const juce::String text : {"?zz=1", "", "no question mark", "cm=80"})
    {
        set (2, 90.0f);
        paste (text);
        expectDefaultsExcept ({});
    }
}

TEST_F (PresetURLTest, OutOfRangeValuesAreClampedAndWordsReadAsZero)
{
    paste ("?cm=150&in=-99&out=loud&cat=0&cre=-100&wfp=nan&lfng=-12.34");
    EXPECT_FLOAT_EQ (real (2), 100.0f);
    EXPECT_FLOAT_EQ (real (1), -24.0f);
    EXPECT_FLOAT_EQ (real (5), 0.0f);
    EXPECT_FLOAT_EQ (real (7), 0.1f);
    EXPECT_FLOAT_EQ (real (8), 0.1f) << "a negative time has no logarithm";
    EXPECT_FLOAT_EQ (real (12), 0.0f);
    EXPECT_FLOAT_EQ (real (13), -12.3f);
}

TEST_F (PresetURLTest, SettingsSurviveTheRoundTrip)
{
    const float values[][2] = {{1, 3.7f}, {2, 61},  {4, 0},  {5, -7.5f}, {6, 35},   {7, 2.4f}, {8, 0.1f},
                               {9, 0},    {10, 55}, {11, 1}, {12, 270},  {13, -96}, {14, 2},   {15, 17},
                               {16, 1},   {17, -3}, {18, 1}, {19, 64},   {20, -12}};
    for (const auto& [id, value] : values)
        set (static_cast<int> (id), value);
    const auto text = url();
    std::vector<float> before;
    for (int i = 0; i < 21; ++i)
        before.push_back (real (i));

    auto other = ProcessorTestSupport::make();
    TRQPresetURL::pasteSettings (*other, text);
    for (int i = 0; i < 21; ++i)
        EXPECT_EQ (other->getAudioParameter (i).getRealValue(), before[static_cast<size_t> (i)])
            << "parameter " << i;
}

TEST_F (PresetURLTest, APasteIsOneStepThatUndoesToTheEarlierSettingsAndPreset)
{
    PresetFolder::write (
        presets.factory(),
        {PresetFolder::section ("F", {PresetFolder::fullPreset ("Start", "f-0"),
                                      PresetFolder::fullPreset ("Loud", "f-1", {{2, 90.0f}})})});
    p = ProcessorTestSupport::make();
    auto controller = p->getPresetController();
    controller->selectUuid ("f-1");
    const auto steps = p->getUndoManager().getNumTransactions();

    paste ("?cm=20&wf=70");
    EXPECT_EQ (p->getUndoManager().getNumTransactions(), steps + 1);

    controller->restoreSelection ("f-0", false);
    p->getUndoManager().undo();
    EXPECT_FLOAT_EQ (real (2), 90.0f);
    EXPECT_FLOAT_EQ (real (3), 15.0f);
    EXPECT_EQ (controller->getCurrentPresetIndex(), 1u) << "undoing a paste brings the preset back";

    controller->restoreSelection ("f-0", false);
    p->getUndoManager().redo();
    EXPECT_FLOAT_EQ (real (2), 20.0f);
    EXPECT_EQ (controller->getCurrentPresetIndex(), 0u) << "redoing a paste leaves the selection";
}

TEST (FactoryPresets, AreWellFormedAndTheirURLsMatchTheirValues)
{
    const juce::File file (juce::String (ZOLK_SOURCE_DIR) + "/presets/factory/TQPresets.json");
    const auto document = nlohmann::json::parse (file.loadFileAsString().toStdString());
    const auto& plugin = document.at ("0002");
    EXPECT_EQ (plugin.at ("favorite"), TRQPresetController::factoryDefaultUuid);

    std::set<std::string> uuids, names;
    bool hasDefault = false;
    for (const auto& section : plugin.at ("sections"))
    {
        for (const auto& preset : section.at ("presets"))
        {
            const auto uuid = preset.at ("uuid").get<std::string>();
            EXPECT_TRUE (uuids.insert (uuid).second) << uuid;
            EXPECT_TRUE (names.insert (preset.at ("name").get<std::string>()).second);
            EXPECT_EQ (juce::Uuid (uuid).toDashedString().toStdString(), uuid);

            float values[21];
            for (const auto& row : ParameterCatalogue::rows())
            {
                const float value = preset.at ("values").at (std::to_string (row.id)).get<float>();
                EXPECT_EQ (snapAndClamp (row.id, value), value) << preset["name"] << " " << row.id;
                values[row.id] = value;
                if (uuid == TRQPresetController::factoryDefaultUuid)
                {
                    EXPECT_EQ (value, row.defaultValue) << "the default preset is the catalogue's";
                }
            }
            hasDefault = hasDefault || uuid == TRQPresetController::factoryDefaultUuid;
            const auto url = juce::String (preset.at ("url").get<std::string>());
            EXPECT_EQ (
                url.fromFirstOccurrenceOf ("/zolk-comp/", true, false),
                TRQPresetURL::settingsAsUrl (values).fromFirstOccurrenceOf ("/zolk-comp/", true, false));
        }
    }
    EXPECT_TRUE (hasDefault);
    EXPECT_GE (uuids.size(), 5u);
}
