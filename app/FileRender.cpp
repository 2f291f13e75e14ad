#include "app/FileRender.h"

#include "app/AudioFileReader.h"
#include "app/AudioFileWriter.h"
#include "app/BlockSizer.h"
#include "app/RenderSession.h"
#include "core/TRQAudioProcessor.h"

#include <chrono>
#include <cmath>
#include <memory>

namespace
{
// An output that opens whole, with the input's channels, rate and length and the
// format this render would write. Outputs only ever appear complete, by renaming; this
// also catches a file cut short by a crash of the machine, or written by something else.
bool isComplete (const juce::File& output, const AudioFileReader& input, int format)
{
    if (!output.existsAsFile())
        return false;
    try
    {
        const AudioFileReader existing (output);
        return existing.getNumChannels() == input.getNumChannels() &&
               existing.getSampleRate() == input.getSampleRate() &&
               existing.getLength() == input.getLength() && existing.getFormat() == format;
    }
    catch (const AudioFileError&)
    {
        return false;
    }
}

juce::String channelProblem (int channels)
{
    return channels >= 1 && channels <= 2
               ? juce::String()
               : "has " + juce::String (channels) + " channels; 1 or 2 are supported";
}
} // namespace

FileRender::FileRender (const RenderOptions& o, const BatchPlan::Item& i)
    : options (o)
    , item (i)
{
}

FileRender::Outcome FileRender::run (const std::atomic<bool>& stop, std::atomic<int64_t>& audioMicroseconds)
{
    try
    {
        return render (stop, audioMicroseconds);
    }
    catch (const std::exception& e)
    {
        // Problems with this file, and settings this file's layout refuses.
        error = e.what();
        return Outcome::failed;
    }
}

FileRender::Outcome FileRender::render (const std::atomic<bool>& stop,
                                        std::atomic<int64_t>& audioMicroseconds)
{
    AudioFileReader input (item.input);
    const int ins = input.getNumChannels();
    const double rate = input.getSampleRate();
    const int64_t length = input.getLength();
    if (length == 0)
        throw AudioFileError ("holds no audio");
    if (const auto problem = channelProblem (ins); problem.isNotEmpty())
        throw AudioFileError (problem);

    std::unique_ptr<AudioFileReader> sidechain;
    if (options.sidechain != juce::File())
    {
        sidechain = std::make_unique<AudioFileReader> (options.sidechain);
        if (sidechain->getSampleRate() != rate)
            throw AudioFileError ("the sidechain's rate, " + juce::String (sidechain->getSampleRate(), 0) +
                                  " Hz, differs from this file's " + juce::String (rate, 0) + " Hz");
        if (sidechain->getNumChannels() != ins && sidechain->getNumChannels() != 1)
            throw AudioFileError ("the sidechain must have 1 channel or as many as this file");
    }
    const int scs = sidechain != nullptr ? sidechain->getNumChannels() : ins;

    const int format = AudioFileWriter::formatFor (options.format, input.getFormat(), ins, length);
    if (!options.overwrite && isComplete (item.output, input, format))
        return Outcome::skipped;

    const auto processor = RenderSession::makeConfiguredProcessor (options, ins, ins, scs);
    processor->setRateAndBufferSizeDetails (rate, options.blockSize);
    processor->prepareToPlay (rate, options.blockSize);
    const int latency = processor->getLatencySamples();

    AudioFileWriter output (item.output, format, ins, rate);
    juce::AudioBuffer<float> block (ins + scs, options.blockSize);
    juce::MidiBuffer midi;
    BlockSizer sizer (options.blockSize, options.randomBlocks);
    RenderReport::Levels inputLevels, outputLevels;
    double maxReductionDb = 0.0;
    int64_t reportedMicroseconds = 0;

    const auto started = std::chrono::steady_clock::now();
    const int64_t total = length + latency;
    for (int64_t position = 0; position < total;)
    {
        if (stop.load (std::memory_order_relaxed))
            return Outcome::stopped;

        const int n = static_cast<int> (std::min<int64_t> (sizer.next(), total - position));
        block.setSize (block.getNumChannels(), n, false, false, true);
        input.read (block, 0, n);
        const int fresh = static_cast<int> (std::clamp<int64_t> (length - position, 0, n));
        inputLevels.add (block, ins, 0, fresh);
        if (sidechain != nullptr)
            sidechain->read (block, ins, n);
        else
            for (int c = ins; c < ins + scs; ++c)
                block.clear (c, 0, n);

        if (options.bypass)
            processor->processBlockBypassed (block, midi);
        else
            processor->processBlock (block, midi);
        maxReductionDb = std::max (maxReductionDb, RenderSession::gainReductionDb (*processor));

        // The first `latency` samples out are the processor's delay, not the input.
        const int skip = static_cast<int> (std::clamp<int64_t> (latency - position, 0, n));
        output.write (block, skip, n - skip);
        outputLevels.add (block, ins, skip, n - skip);
        position += n;

        const auto microseconds =
            std::llround (static_cast<double> (std::min (position, length)) / rate * 1.0e6);
        audioMicroseconds += microseconds - reportedMicroseconds;
        reportedMicroseconds = microseconds;
    }
    output.commit();
    const double elapsed = std::chrono::duration<double> (std::chrono::steady_clock::now() - started).count();

    report.latencySamples = latency;
    report.sampleRate = rate;
    report.blockSize = options.blockSize;
    report.inputPeakDb = inputLevels.peakDb();
    report.inputRmsDb = inputLevels.rmsDb();
    report.outputPeakDb = outputLevels.peakDb();
    report.outputRmsDb = outputLevels.rmsDb();
    report.maxGainReductionDb = maxReductionDb;
    report.realtimeFactor = elapsed > 0.0 ? (length / rate) / elapsed : 0.0;
    RenderSession::describeSettings (*processor, report);
    return Outcome::rendered;
}
