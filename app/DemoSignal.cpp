#include "app/DemoSignal.h"

#include <cmath>

namespace
{
constexpr double twoPi = 6.283185307179586;

void addKick (juce::AudioBuffer<float>& out, int start, double rate)
{
    const int length = static_cast<int> (0.35 * rate);
    double phase = 0.0;
    for (int i = 0; i < length && start + i < out.getNumSamples(); ++i)
    {
        const double t = i / rate;
        const double frequency = 50.0 + 110.0 * std::exp (-t * 30.0);
        phase += twoPi * frequency / rate;
        const float s = static_cast<float> (0.6 * std::sin (phase) * std::exp (-t * 9.0));
        for (int c = 0; c < out.getNumChannels(); ++c)
            out.addSample (c, start + i, s);
    }
}

void addSnare (juce::AudioBuffer<float>& out, int start, double rate, juce::Random& noise)
{
    const int length = static_cast<int> (0.2 * rate);
    for (int i = 0; i < length && start + i < out.getNumSamples(); ++i)
    {
        const double t = i / rate;
        const double tone = 0.2 * std::sin (twoPi * 185.0 * t) * std::exp (-t * 25.0);
        for (int c = 0; c < out.getNumChannels(); ++c)
        {
            const double hiss = 0.3 * (noise.nextDouble() * 2.0 - 1.0) * std::exp (-t * 18.0);
            out.addSample (c, start + i, static_cast<float> (tone + hiss));
        }
    }
}

void addHat (juce::AudioBuffer<float>& out, int start, double rate, juce::Random& noise)
{
    const int length = static_cast<int> (0.05 * rate);
    for (int c = 0; c < out.getNumChannels(); ++c)
    {
        double previous = 0.0;
        for (int i = 0; i < length && start + i < out.getNumSamples(); ++i)
        {
            // A first difference of white noise: bright, like a closed hat.
            const double white = noise.nextDouble() * 2.0 - 1.0;
            const double bright = 0.5 * (white - previous);
            previous = white;
            out.addSample (c, start + i, static_cast<float> (0.25 * bright * std::exp (-(i / rate) * 60.0)));
        }
    }
}

void addChord (juce::AudioBuffer<float>& out, int start, int length, double rate)
{
    const double notes[] = {220.0, 261.63, 329.63, 440.0};
    for (int i = 0; i < length && start + i < out.getNumSamples(); ++i)
    {
        const double t = i / rate;
        const double envelope = std::min (1.0, t / 0.03) * std::exp (-t * 0.8);
        for (int c = 0; c < out.getNumChannels(); ++c)
        {
            double s = 0.0;
            for (int n = 0; n < 4; ++n)
            {
                const double detune = 1.0 + 0.002 * (c == 0 ? n : -n);
                const double f = notes[n] * detune;
                s += std::sin (twoPi * f * t) + 0.3 * std::sin (twoPi * 2.0 * f * t);
            }
            out.addSample (c, start + i, static_cast<float> (0.12 * envelope * s));
        }
    }
}

void addQuietMelody (juce::AudioBuffer<float>& out, int start, int length, double rate)
{
    const double notes[] = {659.26, 587.33, 523.25, 493.88, 440.0, 392.0};
    const int noteLength = std::max (1, length / 6);
    for (int i = 0; i < length && start + i < out.getNumSamples(); ++i)
    {
        const int note = std::min (5, i / noteLength);
        const double t = (i % noteLength) / rate;
        const double envelope = std::min (1.0, t / 0.01) * std::exp (-t * 4.0);
        const float s = static_cast<float> (0.01 * envelope * std::sin (twoPi * notes[note] * t));
        for (int c = 0; c < out.getNumChannels(); ++c)
            out.addSample (c, start + i, s);
    }
}
} // namespace

juce::AudioBuffer<float> DemoSignal::make (double rate)
{
    const auto samples = [rate] (double seconds) { return static_cast<int> (std::lround (seconds * rate)); };
    const int drums = samples (drumsSeconds);
    const int chord = samples (chordSeconds);
    const int quiet = samples (quietSeconds);
    const int total = drums + chord + quiet + samples (silenceSeconds);

    juce::AudioBuffer<float> out (2, total);
    out.clear();
    juce::Random noise (20240521);

    // Eighth notes at 120 beats per minute.
    const int eighth = samples (0.25);
    for (int step = 0; step * eighth < drums; ++step)
    {
        const int at = step * eighth;
        if (step % 4 == 0)
            addKick (out, at, rate);
        if (step % 4 == 2)
            addSnare (out, at, rate, noise);
        addHat (out, at, rate, noise);
    }

    addChord (out, drums, chord, rate);
    addQuietMelody (out, drums + chord, quiet, rate);
    return out;
}
