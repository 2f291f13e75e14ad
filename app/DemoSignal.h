#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

// The built-in demo programme: a bar of drum-like hits, a sustained chord, a quiet
// passage and silence at the end, in stereo. Generated, so that the renderer needs
// no sample files; seeded, so that every render of it is identical.
class DemoSignal
{
public:
    static juce::AudioBuffer<float> make (double sampleRate);

    static constexpr double drumsSeconds = 2.0;
    static constexpr double chordSeconds = 2.0;
    static constexpr double quietSeconds = 1.5;
    static constexpr double silenceSeconds = 1.0;
};
