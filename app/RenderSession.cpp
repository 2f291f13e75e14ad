#include "app/RenderSession.h"

#include "app/AudioFileReader.h"
#include "app/AudioFileWriter.h"
#include "app/BlockSizer.h"
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

    try
    {
        AudioFileReader reader (file);
        if (reader.getNumChannels() < 1 || reader.getNumChannels() > 2)
            throw RenderUsageError (role + " " + file.getFullPathName() + " has " +
                                    juce::String (reader.getNumChannels()) +
                                    " channels; 1 or 2 are supported");
        Audio audio;
        audio.sampleRate = reader.getSampleRate();
        audio.buffer = reader.readAll();
        return audio;
    }
    catch (const AudioFileError& e)
    {
        throw RenderUsageError ("cannot read " + role + " " + file.getFullPathName() + ": " + e.what());
    }
}

void RenderSession::writeWav (const juce::File& file, const juce::AudioBuffer<float>& audio,
                              double sampleRate)
{
    try
    {
        const int format = AudioFileWriter::formatFor (OutputFormat::wav32f, 0, audio.getNumChannels(),
                                                       audio.getNumSamples());
        AudioFileWriter writer (file, format, audio.getNumChannels(), sampleRate);
        writer.write (audio, 0, audio.getNumSamples());
        writer.commit();
    }
    catch (const AudioFileError& e)
    {
        throw RenderUsageError ("cannot write output " + file.getFullPathName() + ": " + e.what());
    }
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

std::unique_ptr<TRQAudioProcessor> RenderSession::makeConfiguredProcessor (const RenderOptions& options,
                                                                           int ins, int outs, int scs)
{
    auto processor = makeProcessor (ins, outs, scs);

    // From the broadest to the most particular: a whole state, a preset, then single
    // parameters.
    if (options.stateIn != juce::File())
        restoreState (*processor, options.stateIn);
    if (options.preset.isNotEmpty())
        applyPreset (*processor, options.preset);
    for (const auto& [name, value] : options.settings)
        applySetting (*processor, name, value);
    return processor;
}

double RenderSession::gainReductionDb (TRQAudioProcessor& processor)
{
    if (processor.getDSP() == nullptr)
        return 0.0;
    const auto& dsp = processor.getDSP()->getCurrentDSP();
    if (dsp == nullptr || dsp->meterValues.empty())
        return 0.0;
    return std::abs (static_cast<double> (dsp->meterValues[0])) * HVNCompressor::meterRangeDb;
}

void RenderSession::describeSettings (TRQAudioProcessor& processor, RenderReport& report)
{
    auto controller = processor.getPresetController();
    controller->updateModified ({}, {});
    if (const auto selected = controller->getPreset (controller->getCurrentPresetIndex()))
        report.preset = selected.value.name;
    report.presetModified = controller->getIsModified();
    report.settingsUrl = TRQPresetURL::settingsAsUrl (processor);
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

    const auto processor = makeConfiguredProcessor (options, ins, outs, scs);
    auto& plugin = *processor;

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

    double maxReductionDb = 0.0;
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
        maxReductionDb = std::max (maxReductionDb, gainReductionDb (plugin));

        for (int c = 0; c < outs; ++c)
            output.copyFrom (c, position, block, c, 0, n);
        position += n;
    }
    const double elapsed = std::chrono::duration<double> (std::chrono::steady_clock::now() - started).count();

    processor->releaseResources();
    writeWav (options.output, output, rate);
    if (options.stateOut != juce::File())
        saveState (plugin, options.stateOut);

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
    describeSettings (plugin, report);
    return report;
}
