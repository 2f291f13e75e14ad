#include "core/TRQAudioProcessor.h"
#include "editor/TRQAudioProcessorEditor.h"
#include "editor/TRQControl.h"
#include "state/TRQUserPrefs.h"

#include <benchmark/benchmark.h>

// Building the context menu happens on the message thread at every right-click: the
// tree, the clipboard check and the ten language names read from the drawing.
namespace
{
// The editor reads and writes preferences: a file of the run's own, not the user's.
struct PreferencesOfOurOwn
{
    PreferencesOfOurOwn() { TRQUserPrefs::Store::setFile (file.getFile()); }
    juce::TemporaryFile file{".json"};
};

struct MenuFixture
{
    juce::ScopedJuceInitialiser_GUI gui;
    PreferencesOfOurOwn preferences;
    TRQAudioProcessor processor;
    TRQAudioProcessorEditor editor{processor};

    MenuFixture()
    {
        editor.setClipboard ({[] { return juce::String ("https://www.halvane.com/zolk-comp/3.5.0?cm=60"); },
                              [] (const juce::String&) {}});
    }
};

MenuFixture& fixture()
{
    static MenuFixture f;
    return f;
}

void BM_ContextMenuBuild (benchmark::State& state)
{
    auto& f = fixture();
    auto* control = f.editor.getControl (1);
    const auto overControl = f.editor.contextAt (
        f.editor.getLocalPoint (control, control->getLocalBounds().getCentre().toFloat()));
    for (auto _ : state)
    {
        auto menu =
            f.editor.buildMenu (state.range (0) != 0 ? overControl : TRQPopupMenuHandler::MenuContext{});
        benchmark::DoNotOptimize (menu.getNumItems());
    }
}
} // namespace

BENCHMARK (BM_ContextMenuBuild)->Arg (0)->Arg (1)->Unit (benchmark::kMicrosecond);
