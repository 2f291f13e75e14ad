// Feeds arbitrary text to the preset reader and to the user file's write-back.
#include "fuzz/PresetFuzzChecks.h"

#include <cstdlib>
#include <iostream>

extern "C" int LLVMFuzzerTestOneInput (const uint8_t* data, size_t size)
{
    static juce::ScopedJuceInitialiser_GUI juce;
    static const juce::TemporaryFile folder ("zolk-fuzz-presets");
    static const auto file = folder.getFile().getChildFile ("HvnUserPresets.json");

    const std::string text (reinterpret_cast<const char*> (data), size);
    for (const auto& fault : {PresetFuzzChecks::checkRead (text), PresetFuzzChecks::checkWrite (text, file)})
    {
        if (!fault.empty())
        {
            std::cerr << fault << std::endl;
            std::abort();
        }
    }
    return 0;
}
