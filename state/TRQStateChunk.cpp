#include "state/TRQStateChunk.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <cstring>

namespace TRQStateChunk
{
namespace
{
constexpr uint32_t magicNumber = 0x21324356;
constexpr int headerSize = 8;
} // namespace

std::unique_ptr<juce::XmlElement> read (const void* data, int sizeInBytes)
{
    if (data == nullptr || sizeInBytes <= headerSize)
        return nullptr;

    const auto* bytes = static_cast<const char*> (data);
    if (juce::ByteOrder::littleEndianInt (bytes) != magicNumber)
        return nullptr;

    const auto length = static_cast<int> (juce::ByteOrder::littleEndianInt (bytes + 4));
    if (length <= 0)
        return nullptr;

    // The text ends at the length field, the end of the block or its zero,
    // whichever comes first. Text that is not UTF-8 is refused before the XML
    // parser sees it: a truncated multi-byte sequence would lead it past the end.
    const char* text = bytes + headerSize;
    const auto available = static_cast<size_t> (std::min (length, sizeInBytes - headerSize));
    const auto textLength = static_cast<int> (strnlen (text, available));
    if (!juce::CharPointer_UTF8::isValidString (text, textLength))
        return nullptr;

    return juce::parseXML (juce::String::fromUTF8 (text, textLength));
}

void write (const juce::XmlElement& document, juce::MemoryBlock& destination)
{
    juce::AudioProcessor::copyXmlToBinary (document, destination);
}
} // namespace TRQStateChunk
