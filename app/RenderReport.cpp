#include "app/RenderReport.h"

#include <cmath>

namespace
{
double toDb (double linear)
{
    return linear > 0.0 ? 20.0 * std::log10 (linear) : -std::numeric_limits<double>::infinity();
}

// JSON has no infinity: silence is reported as null.
juce::String jsonNumber (double value, int decimals)
{
    return std::isfinite (value) ? juce::String (value, decimals) : juce::String ("null");
}

juce::String textNumber (double value, int decimals)
{
    return std::isfinite (value) ? juce::String (value, decimals) : juce::String ("-inf");
}
} // namespace

void RenderReport::Levels::add (const juce::AudioBuffer<float>& buffer, int numChannels, int startSample,
                                int numSamples)
{
    for (int c = 0; c < numChannels; ++c)
    {
        peak = std::max (peak, buffer.getMagnitude (c, startSample, numSamples));
        const float* data = buffer.getReadPointer (c, startSample);
        for (int i = 0; i < numSamples; ++i)
            sumOfSquares += static_cast<double> (data[i]) * data[i];
    }
    count += static_cast<double> (numChannels) * numSamples;
}

double RenderReport::Levels::peakDb() const
{
    return toDb (peak);
}

double RenderReport::Levels::rmsDb() const
{
    return count > 0.0 ? toDb (std::sqrt (sumOfSquares / count)) : -std::numeric_limits<double>::infinity();
}

double RenderReport::peakDb (const juce::AudioBuffer<float>& buffer)
{
    Levels levels;
    levels.add (buffer, buffer.getNumChannels(), 0, buffer.getNumSamples());
    return levels.peakDb();
}

double RenderReport::rmsDb (const juce::AudioBuffer<float>& buffer)
{
    Levels levels;
    levels.add (buffer, buffer.getNumChannels(), 0, buffer.getNumSamples());
    return levels.rmsDb();
}

juce::String RenderReport::toJson() const
{
    return "{" + toJsonMembers() + "}";
}

juce::String RenderReport::toJsonMembers() const
{
    juce::String s;
    s << "\"latency_samples\": " << latencySamples << ", \"sample_rate\": " << jsonNumber (sampleRate, 1)
      << ", \"block_size\": " << blockSize << ", \"input_peak_dbfs\": " << jsonNumber (inputPeakDb, 2)
      << ", \"input_rms_dbfs\": " << jsonNumber (inputRmsDb, 2)
      << ", \"output_peak_dbfs\": " << jsonNumber (outputPeakDb, 2)
      << ", \"output_rms_dbfs\": " << jsonNumber (outputRmsDb, 2)
      << ", \"max_gain_reduction_db\": " << jsonNumber (maxGainReductionDb, 2)
      << ", \"realtime_factor\": " << jsonNumber (realtimeFactor, 1)
      << ", \"preset\": " << (preset.isEmpty() ? juce::String ("null") : juce::JSON::toString (preset))
      << ", \"preset_modified\": " << (presetModified ? "true" : "false")
      << ", \"settings_url\": " << juce::JSON::toString (settingsUrl);
    return s;
}

juce::String RenderReport::toText() const
{
    const auto line = [] (const juce::String& label, const juce::String& value)
    { return label.paddedRight (' ', 24) + value + "\n"; };

    juce::String s;
    s << line ("latency", juce::String (latencySamples) + " samples")
      << line ("sample rate", juce::String (sampleRate, 0) + " Hz")
      << line ("block size", juce::String (blockSize))
      << line ("input peak", textNumber (inputPeakDb, 2) + " dBFS")
      << line ("input rms", textNumber (inputRmsDb, 2) + " dBFS")
      << line ("output peak", textNumber (outputPeakDb, 2) + " dBFS")
      << line ("output rms", textNumber (outputRmsDb, 2) + " dBFS")
      << line ("max gain reduction", textNumber (maxGainReductionDb, 2) + " dB")
      << line ("realtime factor", textNumber (realtimeFactor, 1) + "x")
      << line ("preset",
               preset.isEmpty() ? juce::String ("none") : preset + (presetModified ? " (modified)" : ""))
      << line ("settings", settingsUrl);
    return s;
}
