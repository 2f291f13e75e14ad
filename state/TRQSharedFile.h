#pragma once

#include <juce_core/juce_core.h>

#include <functional>
#include <string>

// A file that several programs read and change: the user preset file that all of the
// maker's plug-ins share, and the preferences file. A change is made whole while the
// file's folder is locked against the others, written beside the file and swapped in,
// so that a reader never sees half a file and two programs changing it at once both
// keep their change. A file or folder the user made read-only is never written, a
// rewritten file keeps its permission bits and owner, and a link stays a link to the
// file it names. A failure leaves the file as it was and names the problem and the
// file in one short line. Message thread only: it waits for the disk.
namespace TRQSharedFile
{
// The whole file; a missing file reads as empty text.
juce::Result read (const juce::File& file, std::string& text);

// Takes the file's text (empty for a missing file) and leaves the new text in place,
// or fails, and then nothing is written.
using Change = std::function<juce::Result (std::string& text)>;

// Reads the file, lets change work on its text and writes the result, all under the
// lock. The folder is made at need.
juce::Result update (const juce::File& file, const Change& change);
} // namespace TRQSharedFile
