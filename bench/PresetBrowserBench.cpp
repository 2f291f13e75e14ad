#include "core/TRQAudioProcessor.h"
#include "editor/TRQPresetView.h"
#include "presets/TRQPresetController.h"
#include "presets/TRQPresetFiles.h"

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

// What opening the preset browser costs on the message thread, by the number of
// user presets: reading the files again and building the rows.
namespace
{
struct PresetStore
{
    explicit PresetStore (int count)
    {
        folder.createDirectory();
        nlohmann::json presets = nlohmann::json::array();
        for (int i = 0; i < count; ++i)
            presets.push_back ({{"name", "Preset " + std::to_string (i)},
                                {"uuid", "u-" + std::to_string (i)},
                                {"values", {{"1", (float)(i % 24) - 12.0f}}}});
        nlohmann::json document;
        document["0002"]["sections"] = nlohmann::json::array ({{{"section", "User"}, {"presets", presets}}});
        const auto user = folder.getChildFile ("HvnUserPresets.json");
        user.replaceWithText (juce::String (document.dump (4)));
        TRQPresetFiles::setLocations ({user, folder.getChildFile ("none.json")});
    }
    ~PresetStore()
    {
        TRQPresetFiles::setLocations (previous);
        folder.deleteRecursively();
    }

    TRQPresetFiles::Locations previous = TRQPresetFiles::locations();
    juce::File folder = juce::File::createTempFile ("zolk-bench-presets");
};

void presetBrowserOpen (benchmark::State& state, bool reload)
{
    static juce::ScopedJuceInitialiser_GUI juce;
    PresetStore store ((int)state.range (0));
    TRQAudioProcessor processor;
    auto controller = processor.getPresetController();
    TRQPresetView view (controller);
    view.setBounds (0, 0, 395, 350);
    for (auto _ : state)
    {
        if (reload)
            controller->reload();
        view.rebuild();
    }
    state.counters["presets"] = (double)controller->getPresets().size();
}

void presetBrowserRebuild (benchmark::State& state)
{
    presetBrowserOpen (state, false);
}

void presetBrowserReloadAndRebuild (benchmark::State& state)
{
    presetBrowserOpen (state, true);
}
} // namespace

BENCHMARK (presetBrowserRebuild)->Arg (10)->Arg (100)->Arg (1000)->Unit (benchmark::kMicrosecond);
BENCHMARK (presetBrowserReloadAndRebuild)
    ->Arg (10)
    ->Arg (100)
    ->Arg (1000)
    ->Arg (10000)
    ->Unit (benchmark::kMicrosecond);
