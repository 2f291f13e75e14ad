#include "app/RenderSession.h"
#include "app/DemoSignal.h"
#include "support/PresetFolder.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

namespace
{
juce::AudioBuffer<float> readWav (const juce::File& file, double* rate = nullptr, int* bits = nullptr)
{
    juce::WavAudioFormat wav;
    std::unique_ptr<juce::AudioFormatReader> reader (
        wav.createReaderFor (file.createInputStream().release(), true));
    if (reader == nullptr)
        return {};
    juce::AudioBuffer<float> b (static_cast<int> (reader->numChannels),
                                static_cast<int> (reader->lengthInSamples));
    reader->read (&b, 0, b.getNumSamples(), 0, true, true);
    if (rate != nullptr)
        *rate = reader->sampleRate;
    if (bits != nullptr)
        *bits = static_cast<int> (reader->bitsPerSample);
    return b;
}

void writeWav (const juce::File& file, const juce::AudioBuffer<float>& audio, double rate)
{
    juce::WavAudioFormat wav;
    auto stream = file.createOutputStream();
    std::unique_ptr<juce::AudioFormatWriter> writer (wav.createWriterFor (
        stream.release(), rate, static_cast<unsigned> (audio.getNumChannels()), 32, {}, 0));
    writer->writeFromAudioSampleBuffer (audio, 0, audio.getNumSamples());
}

RenderReport render (juce::StringArray args)
{
    return RenderSession (RenderOptions::parse (args)).run();
}
} // namespace

TEST (RenderSession, RendersTheDemoWithItsLatencyTailAsFloatWav)
{
    TempFolder tmp;
    const auto out = tmp / "demo.wav";
    const auto report = render ({"--rate", "44100", out.getFullPathName()});

    double rate = 0.0;
    int bits = 0;
    const auto audio = readWav (out, &rate, &bits);
    EXPECT_EQ (rate, 44100.0);
    EXPECT_EQ (bits, 32);
    EXPECT_EQ (audio.getNumChannels(), 2);
    EXPECT_EQ (audio.getNumSamples(), DemoSignal::make (44100.0).getNumSamples() + report.latencySamples);
    EXPECT_GT (report.latencySamples, 0);
    EXPECT_EQ (report.sampleRate, 44100.0);
    EXPECT_EQ (report.blockSize, 512);
    EXPECT_GT (report.outputPeakDb, -20.0);
    EXPECT_LE (report.inputPeakDb, 0.0);

    const auto json = juce::JSON::parse (report.toJson());
    for (auto key : {"latency_samples", "sample_rate", "block_size", "input_peak_dbfs", "input_rms_dbfs",
                     "output_peak_dbfs", "output_rms_dbfs", "max_gain_reduction_db", "realtime_factor"})
        EXPECT_TRUE (json.hasProperty (key)) << key;
}

TEST (RenderSession, OutputDoesNotDependOnHowTheHostCutsBlocks)
{
    TempFolder tmp;
    // The noise sits at its floor here. Even there (2^-24, never exactly silent)
    // the hiss generators step once per block, so the noise differs with the cuts,
    // and the compressor's level-dependent time laws can carry that into sample
    // differences above float rounding. What must not change is what one hears:
    // the level in every 10 ms.
    render ({"--set", "CompressionAmount=80", "--set", "LoFiNoiseGain=-96", "--block", "512",
             (tmp / "a.wav").getFullPathName()});
    render ({"--set", "2=80", "--set", "13=-96", "--block", "512", "--random-blocks",
             (tmp / "b.wav").getFullPathName()});
    const auto a = readWav (tmp / "a.wav");
    const auto b = readWav (tmp / "b.wav");
    ASSERT_EQ (a.getNumSamples(), b.getNumSamples());
    const int window = 480;
    for (int c = 0; c < a.getNumChannels(); ++c)
        for (int start = 0; start + window <= a.getNumSamples(); start += window)
        {
            const double ra = a.getRMSLevel (c, start, window), rb = b.getRMSLevel (c, start, window);
            if (ra > 1e-4)
            {
                ASSERT_NEAR (20.0 * std::log10 (rb / ra), 0.0, 0.1) << "channel " << c << " at " << start;
            }
        }
}

TEST (RenderSession, ProcessesAFileWithASidechainAtItsOwnRate)
{
    TempFolder tmp;
    juce::AudioBuffer<float> mono (1, 9600);
    for (int i = 0; i < mono.getNumSamples(); ++i)
        mono.setSample (0, i, 0.1f * std::sin (0.05f * static_cast<float> (i)));
    writeWav (tmp / "in.wav", mono, 96000.0);
    writeWav (tmp / "side.wav", mono, 96000.0);

    const auto report = render ({"--sidechain", (tmp / "side.wav").getFullPathName(),
                                 (tmp / "in.wav").getFullPathName(), (tmp / "out.wav").getFullPathName()});
    double rate = 0.0;
    const auto out = readWav (tmp / "out.wav", &rate);
    EXPECT_EQ (rate, 96000.0);
    EXPECT_EQ (out.getNumChannels(), 1);
    EXPECT_EQ (out.getNumSamples(), 9600 + report.latencySamples);
}

TEST (RenderSession, RefusesBadUseAndLeavesNoOutputBehind)
{
    TempFolder tmp;
    const auto out = tmp / "out.wav";
    (tmp / "text.wav").replaceWithText ("this is not audio");
    juce::AudioBuffer<float> one (1, 100);
    one.clear();
    writeWav (tmp / "in48.wav", one, 48000.0);
    writeWav (tmp / "in44.wav", one, 44100.0);

    const juce::StringArray cases[] = {
        {"--set", "NoSuchThing=1", out.getFullPathName()},
        {"--set", "CompressionAmount=101", out.getFullPathName()},
        {"--set", "InputGain=-30", out.getFullPathName()},
        {"--set", "CompAttackTimeConstant=0", out.getFullPathName()},
        {"--set", "CompressionAmount=loud", out.getFullPathName()},
        {(tmp / "missing.wav").getFullPathName(), out.getFullPathName()},
        {(tmp / "text.wav").getFullPathName(), out.getFullPathName()},
        {"--sidechain", (tmp / "in44.wav").getFullPathName(), (tmp / "in48.wav").getFullPathName(),
         out.getFullPathName()},
        {"--block", "0", out.getFullPathName()},
        {"--frobnicate", out.getFullPathName()},
        {},
    };
    for (const auto& args : cases)
    {
        EXPECT_THROW (render (args), RenderUsageError) << args.joinIntoString (" ");
        EXPECT_FALSE (out.exists()) << args.joinIntoString (" ");
    }
}

TEST (RenderSession, CommandLineReportsErrorsInOneLineWithExitCodeTwo)
{
    TempFolder tmp;
    const juce::String binary = juce::String (ZOLK_BINARY_DIR) + "/app/zolk-render";
    juce::ChildProcess process;
    ASSERT_TRUE (
        process.start (juce::StringArray{binary, "--set", "Bogus=1", (tmp / "x.wav").getFullPathName()},
                       juce::ChildProcess::wantStdErr));
    const auto text = process.readAllProcessOutput();
    process.waitForProcessToFinish (60000);
    EXPECT_EQ (process.getExitCode(), 2u);
    EXPECT_TRUE (text.trim().startsWith ("zolk-render: unknown parameter")) << text;
    EXPECT_EQ (juce::StringArray::fromLines (text.trim()).size(), 1);
    EXPECT_FALSE ((tmp / "x.wav").exists());

    juce::ChildProcess preset;
    ASSERT_TRUE (preset.start (
        juce::StringArray{binary, "--preset", "No Such Preset", (tmp / "x.wav").getFullPathName()},
        juce::ChildProcess::wantStdErr));
    const auto presetText = preset.readAllProcessOutput().trim();
    preset.waitForProcessToFinish (60000);
    EXPECT_EQ (preset.getExitCode(), 2u);
    EXPECT_EQ (presetText, "zolk-render: unknown preset \"No Such Preset\"");

    juce::ChildProcess json;
    ASSERT_TRUE (
        json.start (juce::StringArray{binary, "--json", "--rate", "44100", (tmp / "y.wav").getFullPathName()},
                    juce::ChildProcess::wantStdOut));
    const auto report = juce::JSON::parse (json.readAllProcessOutput());
    json.waitForProcessToFinish (60000);
    EXPECT_EQ (json.getExitCode(), 0u);
    EXPECT_EQ (static_cast<int> (report["sample_rate"]), 44100);
}

TEST (RenderSession, StartsFromAPresetOrASavedStateAndSavesOne)
{
    TempFolder tmp;
    PresetFolder presets;
    PresetFolder::write (
        presets.factory(),
        {PresetFolder::section ("F", {PresetFolder::fullPreset ("Plain", "f-0"),
                                      PresetFolder::fullPreset ("Squeeze", "f-1", {{2, 90.0f}})})});
    const auto state = tmp / "squeeze.state";

    auto report = render ({"--preset", "Squeeze", "--set", "OutputGain=-2", "--state-out",
                           state.getFullPathName(), "--block", "64", (tmp / "a.wav").getFullPathName()});
    EXPECT_EQ (report.preset, "Squeeze");
    EXPECT_TRUE (report.presetModified);
    EXPECT_TRUE (report.settingsUrl.endsWith ("/zolk-comp/3.5.0?cm=90&out=-2")) << report.settingsUrl;
    ASSERT_TRUE (state.existsAsFile());
    EXPECT_FALSE (presets.user().exists()) << "presets are read, never written";

    report = render ({"--state-in", state.getFullPathName(), (tmp / "b.wav").getFullPathName()});
    EXPECT_EQ (report.preset, "Squeeze") << "the state remembers its preset";
    EXPECT_TRUE (report.presetModified);
    EXPECT_TRUE (report.settingsUrl.endsWith ("?cm=90&out=-2"));

    report = render ({(tmp / "c.wav").getFullPathName()});
    EXPECT_EQ (report.preset, "Plain");
    EXPECT_FALSE (report.presetModified);
    EXPECT_TRUE (report.settingsUrl.endsWith ("/3.5.0"));

    const auto json = juce::JSON::parse (report.toJson());
    EXPECT_EQ (json["preset"].toString(), "Plain");
    EXPECT_FALSE (static_cast<bool> (json["preset_modified"]));
    EXPECT_EQ (json["settings_url"].toString(), report.settingsUrl);
}

TEST (RenderSession, ListsThePresetsOfTheInputsLayout)
{
    TempFolder tmp;
    PresetFolder presets;
    auto monoOnly = PresetFolder::preset ("Mono Only", "f-2", {});
    monoOnly["channels"] = nlohmann::json::array ({nlohmann::json::array ({1, 1})});
    PresetFolder::write (
        presets.factory(),
        {PresetFolder::section ("Factory", {PresetFolder::preset ("Plain", "f-0", {}),
                                            PresetFolder::preset ("Squeeze", "f-1", {}), monoOnly})},
        "f-1");
    PresetFolder::write (presets.user(),
                         {PresetFolder::section ("User", {PresetFolder::preset ("Mine", "u-0", {})})});

    const auto stereo = RenderSession (RenderOptions::parse ({"--list-presets"})).listPresets();
    EXPECT_EQ (stereo, "User (user)\n    Mine\nFactory\n    Plain\n  > Squeeze  [default]\n");

    juce::AudioBuffer<float> mono (1, 100);
    mono.clear();
    writeWav (tmp / "mono.wav", mono, 48000.0);
    const auto forMono =
        RenderSession (RenderOptions::parse ({"--list-presets", (tmp / "mono.wav").getFullPathName()}))
            .listPresets();
    EXPECT_TRUE (forMono.contains ("    Mono Only\n")) << forMono;
}

TEST (RenderSession, RefusesAnUnknownPresetOrAnUnreadableState)
{
    TempFolder tmp;
    PresetFolder presets;
    const auto out = tmp / "out.wav";
    (tmp / "text.state").replaceWithText ("not a chunk");
    const juce::StringArray cases[] = {
        {"--preset", "Nothing Like It", out.getFullPathName()},
        {"--state-in", (tmp / "none.state").getFullPathName(), out.getFullPathName()},
        {"--state-in", (tmp / "text.state").getFullPathName(), out.getFullPathName()},
        {"--list-presets", "a.wav", "b.wav"},
    };
    for (const auto& args : cases)
    {
        EXPECT_THROW (render (args), RenderUsageError) << args.joinIntoString (" ");
        EXPECT_FALSE (out.exists());
    }
}

TEST (RenderSession, HQFlagRendersThroughTheConvertersWithTheLatencyItReports)
{
    for (double rate : {44100.0, 48000.0, 192000.0})
    {
        SCOPED_TRACE (rate);
        TempFolder tmp;
        constexpr int at = 3000;
        juce::AudioBuffer<float> impulse (2, static_cast<int> (rate / 10));
        impulse.clear();
        impulse.setSample (0, at, 0.5f);
        impulse.setSample (1, at, 0.5f);
        writeWav (tmp / "impulse.wav", impulse, rate);

        // With no mix the chain is transparent apart from its delay.
        const auto args = [&] (bool hq)
        {
            juce::StringArray a{"--set", "MasterMix=0"};
            if (hq)
                a.add ("--hq");
            a.add ((tmp / "impulse.wav").getFullPathName());
            a.add ((tmp / (hq ? "hq.wav" : "plain.wav")).getFullPathName());
            return a;
        };
        const auto plain = render (args (false));
        const auto hq = render (args (true));
        EXPECT_GT (hq.latencySamples, plain.latencySamples) << "the converters add their delay";

        const auto out = readWav (tmp / "hq.wav");
        ASSERT_EQ (out.getNumSamples(), impulse.getNumSamples() + hq.latencySamples);
        for (int c = 0; c < 2; ++c)
        {
            int peakAt = 0;
            for (int i = 0; i < out.getNumSamples(); ++i)
                if (std::abs (out.getSample (c, i)) > std::abs (out.getSample (c, peakAt)))
                    peakAt = i;
            EXPECT_EQ (peakAt - at, hq.latencySamples) << "channel " << c;
        }
    }
}

TEST (RenderSession, ReportedLatencyIsWhereAnImpulseComesOut)
{
    TempFolder tmp;
    for (double rate : {44100.0, 48000.0, 96000.0})
    {
        const int at = static_cast<int> (0.2 * rate);
        juce::AudioBuffer<float> impulse (2, at * 2);
        impulse.clear();
        impulse.setSample (0, at, 1.0f);
        impulse.setSample (1, at, 1.0f);
        const auto name = juce::String (rate, 0);
        writeWav (tmp.dir.getChildFile ("impulse" + name + ".wav"), impulse, rate);
        const auto report = render ({"--set", "MasterMix=0",
                                     tmp.dir.getChildFile ("impulse" + name + ".wav").getFullPathName(),
                                     tmp.dir.getChildFile ("out" + name + ".wav").getFullPathName()});
        const auto out = readWav (tmp.dir.getChildFile ("out" + name + ".wav"));
        int peak = 0;
        for (int i = 0; i < out.getNumSamples(); ++i)
            if (std::abs (out.getSample (1, i)) > std::abs (out.getSample (1, peak)))
                peak = i;
        EXPECT_EQ (peak - at, report.latencySamples) << rate;
        EXPECT_EQ (report.latencySamples, rate == 44100.0 ? 16 : rate == 48000.0 ? 17 : 30);
        EXPECT_NEAR (out.getSample (1, peak), 1.0f, 1e-5f);
        EXPECT_EQ (report.maxGainReductionDb, 0.0);

        // In HQ mode the chain's latency is filled up to whole host samples and the
        // converters' delay is added: the impulse still lands where reported.
        const auto hq = render ({"--set", "MasterMix=0", "--set", "HQMode=1",
                                 tmp.dir.getChildFile ("impulse" + name + ".wav").getFullPathName(),
                                 tmp.dir.getChildFile ("hq" + name + ".wav").getFullPathName()});
        const auto hqOut = readWav (tmp.dir.getChildFile ("hq" + name + ".wav"));
        int hqPeak = 0;
        for (int i = 0; i < hqOut.getNumSamples(); ++i)
            if (std::abs (hqOut.getSample (0, i)) > std::abs (hqOut.getSample (0, hqPeak)))
                hqPeak = i;
        EXPECT_EQ (hqPeak - at, hq.latencySamples) << rate;
    }
}

TEST (RenderSession, ReportsTheCompressorsLargestReduction)
{
    TempFolder tmp;
    const auto light = render ({"--set", "CompressionAmount=10", (tmp / "a.wav").getFullPathName()});
    const auto heavy = render ({"--set", "CompressionAmount=100", (tmp / "b.wav").getFullPathName()});
    EXPECT_GT (light.maxGainReductionDb, 1.0);
    EXPECT_GT (heavy.maxGainReductionDb, light.maxGainReductionDb + 3.0);
}

TEST (RenderSession, CommandLineFindsUserPresetsInTheHomeDocumentsFolder)
{
    TempFolder home;
    PresetFolder::write (
        home / "Documents/Halvane/HvnUserPresets.json",
        {PresetFolder::section ("Mine", {PresetFolder::preset ("Home Preset", "h-1", {{2, 77.0f}})})});

    const juce::String binary = juce::String (ZOLK_BINARY_DIR) + "/app/zolk-render";
    const juce::String previousHome = std::getenv ("HOME") != nullptr ? std::getenv ("HOME") : "";
    setenv ("HOME", home.dir.getFullPathName().toRawUTF8(), 1);
    juce::ChildProcess list;
    const bool started =
        list.start (juce::StringArray{binary, "--list-presets"}, juce::ChildProcess::wantStdOut);
    const auto text = started ? list.readAllProcessOutput() : juce::String();
    list.waitForProcessToFinish (60000);

    juce::ChildProcess render;
    const auto out = home / "out.wav";
    render.start (juce::StringArray{binary, "--json", "--preset", "Home Preset", out.getFullPathName()},
                  juce::ChildProcess::wantStdOut);
    const auto report = juce::JSON::parse (render.readAllProcessOutput());
    render.waitForProcessToFinish (60000);
    setenv ("HOME", previousHome.toRawUTF8(), 1);

    ASSERT_TRUE (started);
    EXPECT_TRUE (text.startsWith ("Mine (user)\n")) << text;
    EXPECT_TRUE (text.contains (" Home Preset")) << text;
    EXPECT_EQ (report["preset"].toString(), "Home Preset");
    EXPECT_TRUE (report["settings_url"].toString().contains ("cm=77"));
}
