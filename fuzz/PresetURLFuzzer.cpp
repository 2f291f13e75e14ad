// Feeds arbitrary text to the settings paster, as if the clipboard held it.
#include "fuzz/PresetFuzzChecks.h"

#include <cstdlib>
#include <iostream>

extern "C" int LLVMFuzzerTestOneInput (const uint8_t* data, size_t size)
{
    static juce::ScopedJuceInitialiser_GUI juce;
    // Instances made here must not read the user's presets.
    static const juce::TemporaryFile folder ("zolk-fuzz-url");
    static const bool placed = []
    {
        TRQPresetFiles::setLocations (
            {folder.getFile().getChildFile ("user.json"), folder.getFile().getChildFile ("factory.json")});
        return true;
    }();
    (void)placed;

    const auto fault =
        PresetFuzzChecks::checkPaste (std::string (reinterpret_cast<const char*> (data), size));
    if (!fault.empty())
    {
        std::cerr << fault << std::endl;
        std::abort();
    }
    return 0;
}
