#include "core/TRQAudioProcessor.h"
#include "editor/TRQAudioProcessorEditor.h"
#include "editor/TRQDrawing.h"
#include "editor/TRQEditorGLState.h"
#include "state/TRQUserPrefs.h"

#include "BinaryData.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <ctime>

// What the editor costs: reading the drawing, and in a real window with OpenGL (run
// under scripts/xvfb-test.sh) the first frame, an idle panel and the blurred
// background behind a modal. Times of the GL thread are reported as manual time.
namespace
{
bool needsDisplay (benchmark::State& state)
{
    if (std::getenv ("DISPLAY") != nullptr)
        return false;
    state.SkipWithError ("needs a display: run under scripts/xvfb-test.sh");
    return true;
}

void pump (int milliseconds)
{
    juce::MessageManager::getInstance()->runDispatchLoopUntil (milliseconds);
}

// An editor on the desktop, once its first GL frame is drawn.
struct OpenEditor
{
    OpenEditor (int percent, bool advancedOpen)
    {
        // The editor reads and writes preferences: a file of the run's own, not the user's.
        TRQUserPrefs::Store::setFile (preferences.getFile());
        TRQUserPrefs::UIScalePref scale;
        scale.set (percent);
        processor.getPluginState().setAdvancedPaneIsOpen (advancedOpen);
        const double start = juce::Time::getMillisecondCounterHiRes();
        editor = std::make_unique<TRQAudioProcessorEditor> (processor);
        editor->setTopLeftPosition (20, 20);
        editor->addToDesktop (0);
        editor->setVisible (true);
        for (int i = 0; i < 1000 && editor->getFramesRendered() == 0; ++i)
            pump (2);
        msToFirstFrame = juce::Time::getMillisecondCounterHiRes() - start;
    }

    juce::TemporaryFile preferences{".json"};
    TRQAudioProcessor processor;
    std::unique_ptr<TRQAudioProcessorEditor> editor;
    double msToFirstFrame = 0.0;
};

double threadCpuMs()
{
    timespec t{};
    clock_gettime (CLOCK_THREAD_CPUTIME_ID, &t);
    return (double)t.tv_sec * 1000.0 + (double)t.tv_nsec / 1.0e6;
}

// Parsing the embedded drawing, which the first editor of a process does.
void BM_DrawingParse (benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize (TRQDrawing::parseGzipped (BinaryData::TQDrawing_json_gz,
                                                            (size_t)BinaryData::TQDrawing_json_gzSize));
}

// Every list one language and style reads, as a language change does.
void BM_DrawingListsOfALanguage (benchmark::State& state)
{
    auto drawing = TRQDrawing::get();
    for (auto _ : state)
    {
        size_t elements = drawing.bgList (1).elements.size() +
                          drawing.clumpLabelList (TRQLanguage::Korean, 1).elements.size();
        for (int p = 0; p < 21; ++p)
        {
            elements += drawing.trackList (p, 1).elements.size() +
                        drawing.paramLabelList (p, TRQLanguage::Korean, 1).elements.size();
            for (int v = 0; v < 3; ++v)
                elements += drawing.paramStringList (p, v, TRQLanguage::Korean, 1).elements.size();
        }
        benchmark::DoNotOptimize (elements);
    }
}

// From making the editor to its first GL frame, the drawing already parsed.
void BM_EditorFirstFrame (benchmark::State& state)
{
    if (needsDisplay (state))
        return;
    auto drawing = TRQDrawing::get();
    for (auto _ : state)
    {
        OpenEditor opened ((int)state.range (0), true);
        state.SetIterationTime (opened.msToFirstFrame / 1000.0);
    }
}

// One 16 ms tick of an idle open panel: the GL frame as manual time; the timer's
// tick, the message thread's share of a core and the frame rate as counters.
void BM_EditorIdle (benchmark::State& state)
{
    if (needsDisplay (state))
        return;
    OpenEditor opened ((int)state.range (0), true);
    auto& editor = *opened.editor;
    pump (500);
    double timerMs = 0.0;
    const int framesBefore = editor.getFramesRendered();
    const double wallBefore = juce::Time::getMillisecondCounterHiRes();
    const double cpuBefore = threadCpuMs();
    for (auto _ : state)
    {
        pump (16);
        timerMs += editor.getLastTimerMs();
        state.SetIterationTime (editor.getLastFrameMs() / 1000.0);
    }
    const double wall = juce::Time::getMillisecondCounterHiRes() - wallBefore;
    state.counters["timerTickMs"] = timerMs / (double)state.iterations();
    state.counters["messageThreadCpu%"] = 100.0 * (threadCpuMs() - cpuBefore) / wall;
    state.counters["framesPerSecond"] = (editor.getFramesRendered() - framesBefore) * 1000.0 / wall;
}

// The background blurred behind a modal, once per background: each iteration
// opens the modal on a fresh background.
void BM_EditorModalBlur (benchmark::State& state)
{
    if (needsDisplay (state))
        return;
    OpenEditor opened ((int)state.range (0), true);
    auto& editor = *opened.editor;
    auto& gl = editor.getGLState();
    pump (300);
    int scale = (int)state.range (0);
    for (auto _ : state)
    {
        gl.modalShowing = false;
        scale = scale == (int)state.range (0) ? scale + 1 : (int)state.range (0);
        editor.setUserScale (scale);
        pump (200);
        const int passes = gl.blurPasses.load();
        gl.modalShowing = true;
        for (int i = 0; i < 500 && gl.blurPasses.load() == passes; ++i)
            pump (5);
        state.SetIterationTime (gl.lastBlurMs.load() / 1000.0);
    }
}
} // namespace

BENCHMARK (BM_DrawingParse)->Unit (benchmark::kMillisecond);
BENCHMARK (BM_DrawingListsOfALanguage)->Unit (benchmark::kMillisecond);
BENCHMARK (BM_EditorFirstFrame)
    ->Arg (100)
    ->Arg (200)
    ->Iterations (5)
    ->UseManualTime()
    ->Unit (benchmark::kMillisecond);
BENCHMARK (BM_EditorIdle)
    ->Arg (100)
    ->Arg (200)
    ->Iterations (60)
    ->UseManualTime()
    ->Unit (benchmark::kMillisecond);
BENCHMARK (BM_EditorModalBlur)
    ->Arg (100)
    ->Arg (200)
    ->Iterations (4)
    ->UseManualTime()
    ->Unit (benchmark::kMillisecond);
