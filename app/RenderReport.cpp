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

double RenderReport::peakDb (const juce::AudioBuffer<float>& buffer)
{
    float peak = 0.0f;
    for (int c = 0; c < buffer.getNumChannels(); ++c)
        peak = std::max (peak, buffer.getMagnitude (c, 0, buffer.getNumSamples()));
    return toDb (peak);
}

double RenderReport::rmsDb (const juce::AudioBuffer<float>& buffer)
{
    double sum = 0.0;
    for (int c = 0; c < buffer.getNumChannels(); ++c)
    {
        const float* data = buffer.getReadPointer (c);
        for (int i = 0; i < buffer.getNumSamples(); ++i)
            sum += static_cast<double> (data[i]) * data[i];
    }
    const double count = static_cast<double> (buffer.getNumChannels()) * buffer.getNumSamples();
    return count > 0.0 ? toDb (std::sqrt (sum / count)) : -std::numeric_limits<double>::infinity();
}

juce::String RenderReport::toJson() const
{
    juce::String s;
    s << "{\"latency_samples\": " << latencySamples << ", \"sample_rate\": " << jsonNumber (sampleRate, 1)
      << ", \"block_size\": " << blockSize << ", \"input_peak_dbfs\": " << jsonNumber (inputPeakDb, 2)
      << ", \"input_rms_dbfs\": " << jsonNumber (inputRmsDb, 2)
      << ", \"output_peak_dbfs\": " << jsonNumber (outputPeakDb, 2)
      << ", \"output_rms_dbfs\": " << jsonNumber (outputRmsDb, 2)
      << ", \"max_gain_reduction_db\": " << jsonNumber (maxGainReductionDb, 2)
      << ", \"realtime_factor\": " << jsonNumber (realtimeFactor, 1)
      << ", \"preset\": " << (preset.isEmpty() ? juce::String ("null") : juce::JSON::toString (preset))
      << ", \"preset_modified\": " << (presetModified ? "true" : "false")
      << ", \"settings_url\": " << juce::JSON::toString (settingsUrl) << "}";
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
