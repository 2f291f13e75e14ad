#include "app/RenderSession.h"

#include "app/DemoSignal.h"
#include "core/HVNPublicDSP.h"
#include "core/TRQAudioProcessor.h"
#include "dsp/HVNCompressor.h"
#include "presets/TRQPresetController.h"
#include "presets/TRQPresetURL.h"
#include "state/TRQStateChunk.h"

#include <chrono>
#include <cmath>

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

// Written beside the target and moved into place, so a failed write never leaves a
// partial file under the requested name.
template<typename Write>
void writeAtomically (const juce::File& file, Write&& write)
{
    juce::TemporaryFile temporary (file);
    {
        auto stream = temporary.getFile().createOutputStream();
        if (stream == nullptr || !write (std::move (stream)))
            throw RenderUsageError ("cannot write output " + file.getFullPathName());
    }
    if (!temporary.overwriteTargetFileWithTemporary())
        throw RenderUsageError ("cannot write output " + file.getFullPathName());
}
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
    writeAtomically (file,
                     [&] (std::unique_ptr<juce::FileOutputStream> stream)
                     {
                         juce::WavAudioFormat wav;
                         std::unique_ptr<juce::AudioFormatWriter> writer (
                             wav.createWriterFor (stream.get(), sampleRate,
                                                  static_cast<unsigned> (audio.getNumChannels()), 32, {}, 0));
                         if (writer == nullptr)
                             return false;
                         stream.release();
                         // A 32-bit WAV writer takes float samples when the format says so.
                         return writer->writeFromAudioSampleBuffer (audio, 0, audio.getNumSamples());
                     });
}

void RenderSession::restoreState (TRQAudioProcessor& processor, const juce::File& file)
{
    juce::MemoryBlock chunk;
    if (!file.existsAsFile() || !file.loadFileAsData (chunk))
        throw RenderUsageError ("cannot read state " + file.getFullPathName() + ": no such file");
    // The plug-in quietly ignores a chunk it can't read, as a host expects; here the
    // caller asked for this one, so it is refused instead.
    const auto xml = TRQStateChunk::read (chunk.getData(), static_cast<int> (chunk.getSize()));
    if (xml == nullptr || !xml->hasTagName ("MYPLUGINSETTINGS"))
        throw RenderUsageError ("cannot read state " + file.getFullPathName() +
                                ": not a saved state of this plug-in");
    processor.setStateInformation (chunk.getData(), static_cast<int> (chunk.getSize()));

    // The selection follows the restored state, and is marked modified where the
    // restored values differ from the preset.
    auto controller = processor.getPresetController();
    controller->reload();
    controller->updateModified ({}, {});
}

void RenderSession::saveState (TRQAudioProcessor& processor, const juce::File& file)
{
    juce::MemoryBlock chunk;
    processor.getStateInformation (chunk);
    writeAtomically (file, [&] (std::unique_ptr<juce::FileOutputStream> stream)
                     { return stream->write (chunk.getData(), chunk.getSize()); });
}

void RenderSession::applyPreset (TRQAudioProcessor& processor, const juce::String& name)
{
    auto controller = processor.getPresetController();
    const auto& presets = controller->getPresets();
    const auto found = std::find_if (presets.begin(), presets.end(),
                                     [&] (const PresetRecord& preset) { return preset.name == name; });
    if (found == presets.end())
        throw RenderUsageError ("unknown preset \"" + name + "\"");
    controller->selectPreset (static_cast<std::uint32_t> (found - presets.begin()), true, true);
}

std::unique_ptr<TRQAudioProcessor> RenderSession::makeProcessor (int ins, int outs, int scs)
{
    std::unique_ptr<TRQAudioProcessor> processor (dynamic_cast<TRQAudioProcessor*> (createPluginFilter()));
    juce::AudioProcessor::BusesLayout layout;
    layout.inputBuses.add (channelSet (ins));
    layout.inputBuses.add (channelSet (scs));
    layout.outputBuses.add (channelSet (outs));
    if (!processor->setBusesLayout (layout))
        throw RenderUsageError ("the plug-in refuses " + juce::String (ins) + " input channels");
    // Presets are offered by layout: read the list again for this one.
    processor->getPresetController()->reload();
    return processor;
}

juce::String RenderSession::listPresets()
{
    const int ins =
        options.input == juce::File() ? 2 : readWav (options.input, "input").buffer.getNumChannels();
    const auto processor = makeProcessor (ins, ins, ins);
    const auto controller = processor->getPresetController();
    const auto& presets = controller->getPresets();

    juce::String text;
    for (const auto& section : controller->getSections())
    {
        text << section.title << (section.kind == PresetKind::user ? " (user)" : "") << "\n";
        for (auto i = section.first; i < section.end; ++i)
        {
            const bool isDefault = i == controller->getDefaultPresetIndex();
            const bool isSelected = controller->getHasSelection() && i == controller->getCurrentPresetIndex();
            text << (isSelected ? "  > " : "    ") << presets[i].name << (isDefault ? "  [default]" : "")
                 << "\n";
        }
    }
    return text.isEmpty() ? juce::String ("no presets\n") : text;
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

    const auto processor = makeProcessor (ins, outs, scs);
    auto& plugin = *processor;

    // From the broadest to the most particular: a whole state, a preset, then single
    // parameters.
    if (options.stateIn != juce::File())
        restoreState (plugin, options.stateIn);
    if (options.preset.isNotEmpty())
        applyPreset (plugin, options.preset);
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
    double maxReductionDb = 0.0;
    const auto readReduction = [&]
    {
        if (plugin.getDSP() == nullptr)
            return;
        const auto& dsp = plugin.getDSP()->getCurrentDSP();
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
    if (options.stateOut != juce::File())
        saveState (plugin, options.stateOut);

    auto controller = plugin.getPresetController();
    controller->updateModified ({}, {});

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
    if (const auto selected = controller->getPreset (controller->getCurrentPresetIndex()))
        report.preset = selected.value.name;
    report.presetModified = controller->getIsModified();
    report.settingsUrl = TRQPresetURL::settingsAsUrl (plugin);
    return report;
}
