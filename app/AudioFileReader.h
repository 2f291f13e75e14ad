#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <cstdint>
#include <stdexcept>
#include <vector>

struct sf_private_tag;

// A problem with one audio file: it isn't audio, is truncated, can't be read or
// can't be written. The message says what is wrong, not which file.
class AudioFileError : public std::runtime_error
{
public:
    explicit AudioFileError (const juce::String& message)
        : std::runtime_error (message.toStdString())
    {
    }
};

// A WAV, AIFF or FLAC file read through libsndfile, block by block, so that a file of
// any length takes the same memory. Opening checks that the file holds all the audio
// its header announces.
class AudioFileReader
{
public:
    // Throws AudioFileError when the file can't be read, isn't one of the three
    // formats or is truncated.
    explicit AudioFileReader (const juce::File& file);
    ~AudioFileReader();

    AudioFileReader (const AudioFileReader&) = delete;
    AudioFileReader& operator= (const AudioFileReader&) = delete;

    int getNumChannels() const { return channels; }
    double getSampleRate() const { return sampleRate; }
    int64_t getLength() const { return length; }
    // libsndfile's container and encoding (SF_FORMAT_*), for writing the same again.
    int getFormat() const { return format; }

    // The next numSamples frames into the destination's channels from firstChannel on,
    // starting at sample 0; frames past the end are silence. Throws AudioFileError
    // when the audio ends before the length the header gave.
    void read (juce::AudioBuffer<float>& destination, int firstChannel, int numSamples);

    // The whole file in one buffer.
    juce::AudioBuffer<float> readAll();

private:
    sf_private_tag* handle = nullptr;
    int channels = 0;
    double sampleRate = 0.0;
    int64_t length = 0;
    int format = 0;
    int64_t position = 0;
    std::vector<float> interleaved;
};
