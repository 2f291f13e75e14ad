// zolk-render's batch mode over 40 ten-second stereo files at 48 kHz, 24-bit WAV,
// with one job and with two: the wall time of the whole batch and the audio it
// rendered per second. Two jobs on two cores should take no more than 1/1.8 of one
// job's time; compare the two in one run, on a quiet machine.
#include "app/AudioFileWriter.h"
#include "app/BatchRender.h"

#include <benchmark/benchmark.h>
#include <juce_gui_basics/juce_gui_basics.h>
#include <sndfile.h>

#include <sstream>

namespace
{
constexpr int files = 40;
constexpr int seconds = 10;
constexpr double rate = 48000.0;

// Made once for every run of the benchmark, removed at exit.
struct Library
{
    juce::TemporaryFile holder{"zolk-batch-bench"};
    juce::File folder = holder.getFile();

    Library()
    {
        juce::Random random (3);
        juce::AudioBuffer<float> audio (2, seconds * static_cast<int> (rate));
        for (int f = 0; f < files; ++f)
        {
            for (int c = 0; c < 2; ++c)
                for (int i = 0; i < audio.getNumSamples(); ++i)
                    audio.setSample (c, i, 0.3f * (random.nextFloat() * 2.0f - 1.0f));
            AudioFileWriter writer (folder.getChildFile ("in/take" + juce::String (f) + ".wav"),
                                    SF_FORMAT_WAV | SF_FORMAT_PCM_24, 2, rate);
            writer.write (audio, 0, audio.getNumSamples());
            writer.commit();
        }
    }
    ~Library() { folder.deleteRecursively(); }
};

void batchRender (benchmark::State& state)
{
    static juce::ScopedJuceInitialiser_GUI juce;
    static Library library;
    const auto options =
        RenderOptions::parse ({"--overwrite", "--jobs", juce::String (state.range (0)), "--out-dir",
                               library.folder.getChildFile ("out").getFullPathName(),
                               library.folder.getChildFile ("in").getFullPathName()});
    for (auto _ : state)
    {
        std::ostringstream sink;
        std::atomic<bool> stop{false};
        if (BatchRender (options, sink, sink, false).run (stop) != 0)
            state.SkipWithError (sink.str().c_str());
    }
    state.counters["audio_seconds_per_second"] = benchmark::Counter (
        static_cast<double> (state.iterations()) * files * seconds, benchmark::Counter::kIsRate);
}
} // namespace

BENCHMARK (batchRender)
    ->Name ("BatchRender/40x10s_48k_stereo/jobs")
    ->Arg (1)
    ->Arg (2)
    ->Unit (benchmark::kSecond)
    ->UseRealTime();
