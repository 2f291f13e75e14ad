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

    // Peak and RMS level gathered block by block, in dB relative to full scale.
    struct Levels
    {
        void add (const juce::AudioBuffer<float>& buffer, int numChannels, int startSample, int numSamples);
        double peakDb() const;
        double rmsDb() const;

        float peak = 0.0f;
        double sumOfSquares = 0.0;
        double count = 0.0;
    };

    // Peak and RMS level of a whole buffer, in dB relative to full scale.
    static double peakDb (const juce::AudioBuffer<float>& buffer);
    static double rmsDb (const juce::AudioBuffer<float>& buffer);

    juce::String toJson() const;
    // The members of toJson()'s object, without its braces, for a larger object.
    juce::String toJsonMembers() const;
    juce::String toText() const;
};
