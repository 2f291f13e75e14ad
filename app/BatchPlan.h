#pragma once

#include "app/RenderOptions.h"

#include <vector>

// The files a batch renders and where each output goes: an input file lands under
// its own name in the output folder, a folder's audio files (hidden ones aside) under
// their paths inside it.
class BatchPlan
{
public:
    struct Item
    {
        juce::File input;
        juce::File output;
    };

    // Checks the whole command before anything is written, and throws RenderUsageError
    // for an input that doesn't exist, an output folder that is a file, lies in an input
    // folder or can't be written, for inputs without audio files, and for outputs that
    // would replace an input or come from two inputs. Creates the output folder.
    static std::vector<Item> make (const RenderOptions& options);

    static bool isAudioFileName (const juce::String& name);
};
