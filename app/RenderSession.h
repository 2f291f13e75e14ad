#pragma once

#include "app/RenderOptions.h"
#include "app/RenderReport.h"

class TRQAudioProcessor;

#include <juce_audio_formats/juce_audio_formats.h>
#include <juce_audio_processors/juce_audio_processors.h>

#include <memory>

// One render: builds the plug-in's processor as a host does, applies the
// settings, runs every block through processBlock and writes the result.
class RenderSession
{
public:
    explicit RenderSession (RenderOptions options);

    // Throws RenderUsageError for mistakes of the caller; leaves no output file
    // behind when anything fails.
    RenderReport run();

    // The parameter named by its identifier ("CompressionAmount") or host index.
    static juce::AudioProcessorParameter* findParameter (juce::AudioProcessor& processor,
                                                         const juce::String& name);

    // Sets a parameter from a value in its real units, refusing values outside its range.
    static void applySetting (juce::AudioProcessor& processor, const juce::String& name,
                              const juce::String& value);

    // Selects a preset by its name, applying it as a click in the preset browser does.
    static void applyPreset (TRQAudioProcessor& processor, const juce::String& name);

    // A processor with this layout, set up from the options' state, preset and
    // settings, in that order. Throws RenderUsageError for a setting it refuses.
    static std::unique_ptr<TRQAudioProcessor> makeConfiguredProcessor (const RenderOptions& options, int ins,
                                                                       int outs, int scs);

    // The compressor's gain reduction in the last block processed, in dB; read on the
    // rendering thread.
    static double gainReductionDb (TRQAudioProcessor& processor);

    // The report's preset, its modified mark and the settings as a preset URL.
    static void describeSettings (TRQAudioProcessor& processor, RenderReport& report);

    // The presets on offer for the input's layout, section by section, the default and
    // the selected one marked.
    juce::String listPresets();

private:
    struct Audio
    {
        juce::AudioBuffer<float> buffer;
        double sampleRate = 0.0;
    };

    static Audio readWav (const juce::File& file, const juce::String& role);
    static void writeWav (const juce::File& file, const juce::AudioBuffer<float>& audio, double sampleRate);
    static std::unique_ptr<TRQAudioProcessor> makeProcessor (int ins, int outs, int scs);
    static void restoreState (TRQAudioProcessor& processor, const juce::File& file);
    static void saveState (TRQAudioProcessor& processor, const juce::File& file);

    RenderOptions options;
};
