#include "app/AudioFileReader.h"

#include <sndfile.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
uint32_t fourBytes (const unsigned char* p, bool bigEndian)
{
    return bigEndian ? (uint32_t (p[0]) << 24) | (uint32_t (p[1]) << 16) | (uint32_t (p[2]) << 8) | p[3]
                     : (uint32_t (p[3]) << 24) | (uint32_t (p[2]) << 16) | (uint32_t (p[1]) << 8) | p[0];
}

// Where the audio chunk of a WAV or AIFF file ends by its header's word. libsndfile
// quietly shortens a cut-off file to what it holds; comparing this with the file's
// size tells a truncated file from a whole one. Nothing for other containers (FLAC
// counts its frames itself; RF64 keeps the size elsewhere).
std::optional<int64_t> announcedAudioEnd (int fd, int64_t fileSize)
{
    unsigned char header[12];
    if (pread (fd, header, sizeof (header), 0) != static_cast<ssize_t> (sizeof (header)))
        return std::nullopt;

    const bool riff = std::memcmp (header, "RIFF", 4) == 0 && std::memcmp (header + 8, "WAVE", 4) == 0;
    const bool rifx = std::memcmp (header, "RIFX", 4) == 0 && std::memcmp (header + 8, "WAVE", 4) == 0;
    const bool aiff = std::memcmp (header, "FORM", 4) == 0 &&
                      (std::memcmp (header + 8, "AIFF", 4) == 0 || std::memcmp (header + 8, "AIFC", 4) == 0);
    if (!riff && !rifx && !aiff)
        return std::nullopt;

    const char* audioChunk = aiff ? "SSND" : "data";
    int64_t offset = 12;
    for (int chunks = 0; chunks < 100000 && offset + 8 <= fileSize; ++chunks)
    {
        unsigned char chunk[8];
        if (pread (fd, chunk, sizeof (chunk), offset) != static_cast<ssize_t> (sizeof (chunk)))
            return std::nullopt;
        const int64_t size = fourBytes (chunk + 4, !riff);
        if (std::memcmp (chunk, audioChunk, 4) == 0)
            return offset + 8 + size;
        offset += 8 + size + (size & 1);
    }
    return std::nullopt;
}

bool isReadableContainer (int major)
{
    return major == SF_FORMAT_WAV || major == SF_FORMAT_WAVEX || major == SF_FORMAT_RF64 ||
           major == SF_FORMAT_AIFF || major == SF_FORMAT_FLAC;
}
} // namespace

AudioFileReader::AudioFileReader (const juce::File& file)
{
    const int fd = ::open (file.getFullPathName().toRawUTF8(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        throw AudioFileError (juce::String ("cannot be read: ") + juce::String (std::strerror (errno)));

    struct stat status;
    if (fstat (fd, &status) != 0 || !S_ISREG (status.st_mode))
    {
        ::close (fd);
        throw AudioFileError ("not a file");
    }
    if (status.st_size == 0)
    {
        ::close (fd);
        throw AudioFileError ("empty file");
    }
    const auto audioEnd = announcedAudioEnd (fd, status.st_size);

    SF_INFO info{};
    handle = sf_open_fd (fd, SFM_READ, &info, SF_TRUE);
    if (handle == nullptr)
        throw AudioFileError ("not a WAV, AIFF or FLAC file");

    channels = info.channels;
    sampleRate = info.samplerate;
    length = info.frames;
    format = info.format;
    if (!isReadableContainer (format & SF_FORMAT_TYPEMASK))
    {
        sf_close (handle);
        throw AudioFileError ("not a WAV, AIFF or FLAC file");
    }
    if (audioEnd && *audioEnd > status.st_size)
    {
        sf_close (handle);
        throw AudioFileError ("truncated: the header announces " + juce::String (*audioEnd - status.st_size) +
                              " bytes more audio than the file holds");
    }
}

AudioFileReader::~AudioFileReader()
{
    sf_close (handle);
}

void AudioFileReader::read (juce::AudioBuffer<float>& destination, int firstChannel, int numSamples)
{
    const auto wanted =
        static_cast<int> (std::min<int64_t> (numSamples, std::max<int64_t> (0, length - position)));
    interleaved.resize (static_cast<size_t> (numSamples * channels));
    const auto got = wanted > 0 ? sf_readf_float (handle, interleaved.data(), wanted) : 0;
    if (got < wanted)
        throw AudioFileError ("truncated: the audio ends after " + juce::String (position + got) + " of " +
                              juce::String (length) + " samples");
    position += got;

    for (int c = 0; c < channels; ++c)
    {
        float* out = destination.getWritePointer (firstChannel + c);
        for (int i = 0; i < wanted; ++i)
            out[i] = interleaved[static_cast<size_t> (i * channels + c)];
        std::fill (out + wanted, out + numSamples, 0.0f);
    }
}

juce::AudioBuffer<float> AudioFileReader::readAll()
{
    if (length > std::numeric_limits<int>::max() / 2)
        throw AudioFileError ("too long to render in one piece");
    juce::AudioBuffer<float> audio (channels, static_cast<int> (length));
    constexpr int chunk = 65536;
    juce::AudioBuffer<float> block (channels, chunk);
    for (int start = 0; start < audio.getNumSamples(); start += chunk)
    {
        const int n = std::min (chunk, audio.getNumSamples() - start);
        read (block, 0, n);
        for (int c = 0; c < channels; ++c)
            audio.copyFrom (c, start, block, c, 0, n);
    }
    return audio;
}
