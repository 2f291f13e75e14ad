#include "state/TRQStateChunk.h"

#include <gtest/gtest.h>

namespace
{
juce::MemoryBlock chunk (const std::string& text, uint32_t length)
{
    juce::MemoryBlock block;
    const uint32_t magic = juce::ByteOrder::swapIfBigEndian (0x21324356u);
    const uint32_t size = juce::ByteOrder::swapIfBigEndian (length);
    block.append (&magic, 4);
    block.append (&size, 4);
    block.append (text.data(), text.size());
    return block;
}

std::unique_ptr<juce::XmlElement> read (const juce::MemoryBlock& b)
{
    return TRQStateChunk::read (b.getData(), static_cast<int> (b.getSize()));
}
} // namespace

TEST (TRQStateChunk, RoundTripsADocument)
{
    juce::XmlElement root ("MYPLUGINSETTINGS");
    root.setAttribute ("_2", 0.75);
    juce::MemoryBlock block;
    TRQStateChunk::write (root, block);
    const auto back = read (block);
    ASSERT_NE (back, nullptr);
    EXPECT_TRUE (back->isEquivalentTo (&root, false));
}

TEST (TRQStateChunk, CutsALengthThatRunsPastTheBlockAndStopsAtTheZero)
{
    const std::string xml = "<MYPLUGINSETTINGS _2=\"0.5\"/>";
    EXPECT_NE (read (chunk (xml, 100000)), nullptr);
    EXPECT_NE (read (chunk (xml + std::string ("\0garbage", 8), 100)), nullptr);
    const auto cut = read (chunk (xml, 10));
    EXPECT_TRUE (cut == nullptr || !cut->hasTagName ("MYPLUGINSETTINGS"))
        << "a length inside the text cuts it";
}

TEST (TRQStateChunk, RefusesWhatIsNoChunk)
{
    const std::string xml = "<MYPLUGINSETTINGS _2=\"0.5\"/>";
    EXPECT_EQ (read (chunk (xml, 0)), nullptr);
    EXPECT_EQ (read (chunk ("", 5)), nullptr) << "header only";
    auto wrongMagic = chunk (xml, 100);
    static_cast<char*> (wrongMagic.getData())[0] = 'X';
    EXPECT_EQ (read (wrongMagic), nullptr);
    EXPECT_EQ (TRQStateChunk::read (nullptr, 50), nullptr);

    // A multi-byte sequence cut short at the very end of an attribute value.
    EXPECT_EQ (read (chunk ("<MYPLUGINSETTINGS _2=\"a\xff\xff", 100)), nullptr);
    EXPECT_EQ (read (chunk ("<MYPLUGINSETTINGS _2=\"\xe2\x82\"/>", 100)), nullptr);
}
