#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

// What a render measured, printed as one JSON object or as aligned text.
struct RenderReport
{
    int latencySamples = 0;
    double sampleRate = 0.0;
    int blockSize = 0;
    double inputPeakDb = -std::numeric_limits<double>::infinity();
    double inputRmsDb = -std::numeric_limits<double>::infinity();
    double outputPeakDb = -std::numeric_limits<double>::infinity();
    double outputRmsDb = -std::numeric_limits<double>::infinity();
    double maxGainReductionDb = 0.0;
    double realtimeFactor = 0.0;
    juce::String preset; // the selected preset's name; empty when there is none
    bool presetModified = false;
    juce::String settingsUrl; // the settings rendered, as a preset URL

    // Peak and RMS level of a whole buffer, in dB relative to full scale.
    static double peakDb (const juce::AudioBuffer<float>& buffer);
    static double rmsDb (const juce::AudioBuffer<float>& buffer);

    juce::String toJson() const;
    juce::String toText() const;
};
