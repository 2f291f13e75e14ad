#pragma once

#include <juce_core/juce_core.h>

#include <memory>

// The binary wrapping of the saved settings document: a magic number, a
// little-endian length and that many bytes of UTF-8 XML with a terminating zero.
namespace TRQStateChunk
{
// The document inside a chunk, or null when the chunk is too short, carries
// another magic number, a length of 0, text that is not UTF-8, or no XML.
// A length field that runs past the block is cut to what is there.
std::unique_ptr<juce::XmlElement> read (const void* data, int sizeInBytes);

void write (const juce::XmlElement& document, juce::MemoryBlock& destination);
} // namespace TRQStateChunk
