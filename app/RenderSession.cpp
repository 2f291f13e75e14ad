#include "app/RenderSession.h"

#include "app/DemoSignal.h"
#include "core/HVNPublicDSP.h"
#include "core/TRQAudioProcessor.h"
#include "dsp/HVNCompressor.h"

#include <cmath>

#include <chrono>

juce::AudioProcessor* JUCE_CALLTYPE createPluginFilter();

namespace
{
juce::String identifierOf (const juce::String& name)
{
    return name.retainCharacters ("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789");
}

juce::AudioChannelSet channelSet (int channels)
{
    return channels == 1 ? juce::AudioChannelSet::mono() : juce::AudioChannelSet::stereo();
}

// Block sizes between 1 and the maximum, the same sequence on every run.
class BlockSizer
{
public:
    BlockSizer (int maximum, bool random)
        : maximum (maximum)
        , random (random)
    {
    }

    int next() { return random ? 1 + generator.nextInt (maximum) : maximum; }

private:
    int maximum;
    bool random;
    juce::Random generator{12345};
};
} // namespace

RenderSession::RenderSession (RenderOptions o)
    : options (std::move (o))
{
}

juce::AudioProcessorParameter* RenderSession::findParameter (juce::AudioProcessor& processor,
                                                             const juce::String& name)
{
    const auto& parameters = processor.getParameters();
    if (name.containsOnly ("0123456789") && name.isNotEmpty())
    {
        const int index = name.getIntValue();
        return juce::isPositiveAndBelow (index, parameters.size()) ? parameters[index] : nullptr;
    }

    for (auto* parameter : parameters)
        if (identifierOf (parameter->getName (1024)) == name)
            return parameter;
    return nullptr;
}

void RenderSession::applySetting (juce::AudioProcessor& processor, const juce::String& name,
                                  const juce::String& value)
{
    auto* parameter = findParameter (processor, name);
    if (parameter == nullptr)
        throw RenderUsageError ("unknown parameter \"" + name + "\"");

    const auto trimmed = value.trim();
    if (trimmed.isEmpty() || !trimmed.containsOnly ("0123456789+-.eE") ||
        !std::isfinite (trimmed.getDoubleValue()))
        throw RenderUsageError ("value \"" + value + "\" for " + name + " is not a number");

    // The parameter's own text parser maps real units to its normalised range;
    // anything that lands outside 0..1 lies outside the parameter's range.
    const float normalised = parameter->getValueForText (trimmed);
    if (!(normalised >= -1.0e-6f && normalised <= 1.0f + 1.0e-6f))
        throw RenderUsageError ("value " + trimmed + " is outside the range of " + name + " (" +
                                parameter->getText (0.0f, 64).trim() + " to " +
                                parameter->getText (1.0f, 64).trim() + ")");

    parameter->setValueNotifyingHost (juce::jlimit (0.0f, 1.0f, normalised));
}

RenderSession::Audio RenderSession::readWav (const juce::File& file, const juce::String& role)
{
    if (!file.existsAsFile())
        throw RenderUsageError ("cannot read " + role + " " + file.getFullPathName() + ": no such file");

    juce::WavAudioFormat wav;
    std::unique_ptr<juce::AudioFormatReader> reader (
        wav.createReaderFor (file.createInputStream().release(), true));
    if (reader == nullptr)
        throw RenderUsageError ("cannot read " + role + " " + file.getFullPathName() + ": not a WAV file");
    if (reader->numChannels < 1 || reader->numChannels > 2)
        throw RenderUsageError (role + " " + file.getFullPathName() + " has " +
                                juce::String (reader->numChannels) + " channels; 1 or 2 are supported");
    if (reader->lengthInSamples > std::numeric_limits<int>::max() / 2)
        throw RenderUsageError (role + " " + file.getFullPathName() + " is too long");

    Audio audio;
    audio.sampleRate = reader->sampleRate;
    audio.buffer.setSize (static_cast<int> (reader->numChannels), static_cast<int> (reader->lengthInSamples));
    reader->read (&audio.buffer, 0, static_cast<int> (reader->lengthInSamples), 0, true, true);
    return audio;
}

void RenderSession::writeWav (const juce::File& file, const juce::AudioBuffer<float>& audio,
                              double sampleRate)
{
    // Written beside the target and moved into place, so a failed render never
    // leaves a partial file under the requested name.
    juce::TemporaryFile temporary (file);
    {
        auto stream = temporary.getFile().createOutputStream();
        if (stream == nullptr)
            throw RenderUsageError ("cannot write output " + file.getFullPathName());

        juce::WavAudioFormat wav;
        std::unique_ptr<juce::AudioFormatWriter> writer (wav.createWriterFor (
            stream.get(), sampleRate, static_cast<unsigned> (audio.getNumChannels()), 32, {}, 0));
        if (writer == nullptr)
            throw RenderUsageError ("cannot write output " + file.getFullPathName());
        stream.release();

        // A 32-bit WAV writer takes float samples when the format says so.
        writer->writeFromAudioSampleBuffer (audio, 0, audio.getNumSamples());
    }
    if (!temporary.overwriteTargetFileWithTemporary())
        throw RenderUsageError ("cannot write output " + file.getFullPathName());
}

RenderReport RenderSession::run()
{
    Audio input;
    if (options.input == juce::File())
    {
        input.sampleRate = options.demoRate;
        input.buffer = DemoSignal::make (options.demoRate);
    }
    else
    {
        input = readWav (options.input, "input");
    }

    Audio sidechain;
    const bool hasSidechainFile = options.sidechain != juce::File();
    if (hasSidechainFile)
    {
        sidechain = readWav (options.sidechain, "sidechain");
        if (sidechain.sampleRate != input.sampleRate)
            throw RenderUsageError ("sidechain rate " + juce::String (sidechain.sampleRate, 0) +
                                    " Hz differs from the input's " + juce::String (input.sampleRate, 0) +
                                    " Hz");
    }

    const int ins = input.buffer.getNumChannels();
    const int outs = ins;
    const int scs = hasSidechainFile ? sidechain.buffer.getNumChannels() : ins;
    if (scs != ins && scs != 1)
        throw RenderUsageError ("a sidechain must have 1 channel or as many as the input");

    std::unique_ptr<juce::AudioProcessor> processor (createPluginFilter());

    juce::AudioProcessor::BusesLayout layout;
    layout.inputBuses.add (channelSet (ins));
    layout.inputBuses.add (channelSet (scs));
    layout.outputBuses.add (channelSet (outs));
    if (!processor->setBusesLayout (layout))
        throw RenderUsageError ("the plug-in refuses " + juce::String (ins) + " input channels");

    for (const auto& [name, value] : options.settings)
        applySetting (*processor, name, value);

    const double rate = input.sampleRate;
    processor->setRateAndBufferSizeDetails (rate, options.blockSize);
    processor->prepareToPlay (rate, options.blockSize);

    const int latency = processor->getLatencySamples();
    const int inputLength = input.buffer.getNumSamples();
    const int total = inputLength + latency;

    juce::AudioBuffer<float> output (outs, total);
    juce::AudioBuffer<float> block (std::max (ins + scs, outs), options.blockSize);
    juce::MidiBuffer midi;
    BlockSizer sizer (options.blockSize, options.randomBlocks);

    // The compressor's figure of the last block, read on this (the rendering) thread.
    auto* plugin = dynamic_cast<TRQAudioProcessor*> (processor.get());
    double maxReductionDb = 0.0;
    const auto readReduction = [&]
    {
        if (plugin == nullptr || plugin->getDSP() == nullptr)
            return;
        const auto& dsp = plugin->getDSP()->getCurrentDSP();
        if (dsp != nullptr && !dsp->meterValues.empty())
            maxReductionDb = std::max (maxReductionDb, std::abs (static_cast<double> (dsp->meterValues[0])) *
                                                           HVNCompressor::meterRangeDb);
    };

    const auto started = std::chrono::steady_clock::now();
    for (int position = 0; position < total;)
    {
        const int n = std::min (sizer.next(), total - position);
        block.setSize (block.getNumChannels(), n, false, false, true);
        block.clear();

        const int available = juce::jlimit (0, n, inputLength - position);
        for (int c = 0; c < ins && available > 0; ++c)
            block.copyFrom (c, 0, input.buffer, c, position, available);
        if (hasSidechainFile)
        {
            const int sideAvailable = juce::jlimit (0, n, sidechain.buffer.getNumSamples() - position);
            for (int c = 0; c < scs && sideAvailable > 0; ++c)
                block.copyFrom (ins + c, 0, sidechain.buffer, c, position, sideAvailable);
        }

        if (options.bypass)
            processor->processBlockBypassed (block, midi);
        else
            processor->processBlock (block, midi);
        readReduction();

        for (int c = 0; c < outs; ++c)
            output.copyFrom (c, position, block, c, 0, n);
        position += n;
    }
    const double elapsed = std::chrono::duration<double> (std::chrono::steady_clock::now() - started).count();

    processor->releaseResources();
    writeWav (options.output, output, rate);

    RenderReport report;
    report.latencySamples = latency;
    report.sampleRate = rate;
    report.blockSize = options.blockSize;
    report.inputPeakDb = RenderReport::peakDb (input.buffer);
    report.inputRmsDb = RenderReport::rmsDb (input.buffer);
    report.outputPeakDb = RenderReport::peakDb (output);
    report.outputRmsDb = RenderReport::rmsDb (output);
    report.maxGainReductionDb = maxReductionDb;
    report.realtimeFactor = elapsed > 0.0 ? (total / rate) / elapsed : 0.0;
    return report;
}
