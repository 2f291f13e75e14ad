#include "app/AudioFileWriter.h"

#include <sndfile.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <random>
#include <unistd.h>

namespace
{
int chosenFormat (OutputFormat chosen)
{
    switch (chosen)
    {
    case OutputFormat::wav16:
        return SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    case OutputFormat::wav24:
        return SF_FORMAT_WAV | SF_FORMAT_PCM_24;
    case OutputFormat::wav32f:
        return SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    case OutputFormat::flac16:
        return SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
    case OutputFormat::flac24:
        return SF_FORMAT_FLAC | SF_FORMAT_PCM_24;
    case OutputFormat::asInput:
        break;
    }
    return 0;
}

int bytesPerSample (int format)
{
    switch (format & SF_FORMAT_SUBMASK)
    {
    case SF_FORMAT_PCM_16:
        return 2;
    case SF_FORMAT_PCM_24:
        return 3;
    case SF_FORMAT_PCM_32:
    case SF_FORMAT_FLOAT:
        return 4;
    case SF_FORMAT_DOUBLE:
        return 8;
    default:
        return 1;
    }
}

juce::String systemError (const juce::String& what)
{
    return what + ": " + juce::String (std::strerror (errno));
}
} // namespace

int AudioFileWriter::formatFor (OutputFormat chosen, int inputFormat, int channels, int64_t length)
{
    int format = chosenFormat (chosen);
    if (format == 0)
    {
        format = inputFormat;
        SF_INFO probe{};
        probe.channels = channels;
        probe.samplerate = 48000;
        probe.format = format;
        // Encodings libsndfile reads but can't write again become the nearest it can.
        if (!sf_format_check (&probe))
            format = (format & SF_FORMAT_TYPEMASK) |
                     ((format & SF_FORMAT_TYPEMASK) == SF_FORMAT_FLAC ? SF_FORMAT_PCM_24 : SF_FORMAT_FLOAT);
    }

    const auto container = format & SF_FORMAT_TYPEMASK;
    const auto bytes = length * channels * bytesPerSample (format);
    if ((container == SF_FORMAT_WAV || container == SF_FORMAT_WAVEX) && bytes > 0xFFFFFFFFLL - (1 << 20))
        format = SF_FORMAT_RF64 | (format & SF_FORMAT_SUBMASK);
    return format;
}

juce::String AudioFileWriter::fileNameFor (const juce::String& inputPath, OutputFormat chosen)
{
    const auto format = chosenFormat (chosen);
    if (format == 0)
        return inputPath;
    const int dot = inputPath.lastIndexOfChar ('.');
    const auto base = dot > inputPath.lastIndexOfChar ('/') ? inputPath.substring (0, dot) : inputPath;
    return base + ((format & SF_FORMAT_TYPEMASK) == SF_FORMAT_FLAC ? ".flac" : ".wav");
}

AudioFileWriter::AudioFileWriter (const juce::File& file, int format, int numChannels, double sampleRate)
    : target (file)
    , channels (numChannels)
{
    const auto folder = target.getParentDirectory();
    // Another job may be creating the same folder at the same moment.
    if (const auto created = folder.createDirectory(); created.failed() && !folder.isDirectory())
        throw AudioFileError ("cannot create the folder " + folder.getFullPathName() + ": " +
                              created.getErrorMessage());

    std::random_device random;
    int fd = -1;
    for (int attempt = 0; attempt < 100 && fd < 0; ++attempt)
    {
        temporary = folder.getChildFile ("." + target.getFileName() + "." +
                                         juce::String::toHexString (static_cast<int> (random())) + ".part");
        fd = ::open (temporary.getFullPathName().toRawUTF8(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd < 0 && errno != EEXIST)
            break;
    }
    if (fd < 0)
        throw AudioFileError (systemError ("cannot write in " + folder.getFullPathName()));

    SF_INFO info{};
    info.channels = channels;
    info.samplerate = static_cast<int> (sampleRate);
    info.format = format;
    handle = sf_open_fd (fd, SFM_WRITE, &info, SF_TRUE);
    if (handle == nullptr)
    {
        ::close (fd);
        temporary.deleteFile();
        throw AudioFileError (juce::String ("cannot write this format: ") +
                              juce::String (sf_strerror (nullptr)));
    }
    sf_command (handle, SFC_SET_CLIPPING, nullptr, SF_TRUE);
}

AudioFileWriter::~AudioFileWriter()
{
    if (handle != nullptr)
    {
        sf_close (handle);
        temporary.deleteFile();
    }
}

void AudioFileWriter::write (const juce::AudioBuffer<float>& source, int startSample, int numSamples)
{
    interleaved.resize (static_cast<size_t> (numSamples * channels));
    for (int c = 0; c < channels; ++c)
    {
        const float* in = source.getReadPointer (c, startSample);
        for (int i = 0; i < numSamples; ++i)
            interleaved[static_cast<size_t> (i * channels + c)] = in[i];
    }
    if (sf_writef_float (handle, interleaved.data(), numSamples) != numSamples)
        throw AudioFileError (juce::String ("cannot write: ") + juce::String (sf_strerror (handle)));
}

void AudioFileWriter::commit()
{
    // The file's sizes are written on closing; a full disk can show up only here.
    const int closed = sf_close (handle);
    handle = nullptr;
    if (closed != 0)
    {
        temporary.deleteFile();
        throw AudioFileError (juce::String ("cannot write: ") + juce::String (sf_error_number (closed)));
    }
    if (std::rename (temporary.getFullPathName().toRawUTF8(), target.getFullPathName().toRawUTF8()) != 0)
    {
        const auto message = systemError ("cannot replace " + target.getFullPathName());
        temporary.deleteFile();
        throw AudioFileError (message);
    }
}
