#pragma once

#include "app/AudioFileReader.h"
#include "app/RenderOptions.h"

// An audio file written through libsndfile under a hidden temporary name beside its
// target and moved into place by commit(), so that the target's name only ever holds
// a whole file. A writer that goes away uncommitted removes its temporary.
class AudioFileWriter
{
public:
    // Creates the target's folder when needed. Integer and FLAC encodings clip rather
    // than wrap. Throws AudioFileError when the temporary can't be created.
    AudioFileWriter (const juce::File& target, int format, int channels, double sampleRate);
    ~AudioFileWriter();

    AudioFileWriter (const AudioFileWriter&) = delete;
    AudioFileWriter& operator= (const AudioFileWriter&) = delete;

    void write (const juce::AudioBuffer<float>& source, int startSample, int numSamples);
    // Finishes the file and renames it to the target, replacing what was there.
    void commit();

    // The libsndfile format (SF_FORMAT_*) an output takes: the chosen one, or else the
    // input's own where it can be written. A WAV too large for its 32-bit sizes
    // becomes RF64.
    static int formatFor (OutputFormat chosen, int inputFormat, int channels, int64_t length);
    // The output's relative path: the input's, with the chosen format's extension.
    static juce::String fileNameFor (const juce::String& inputPath, OutputFormat chosen);

private:
    juce::File target;
    juce::File temporary;
    sf_private_tag* handle = nullptr;
    int channels = 0;
    std::vector<float> interleaved;
};
