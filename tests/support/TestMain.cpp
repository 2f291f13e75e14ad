#include "presets/TRQPresetFiles.h"
#include "state/TRQUserPrefs.h"

#include <gtest/gtest.h>
#include <juce_events/juce_events.h>

#include <X11/Xlib.h>

#include <cstdlib>

namespace
{
// Windows on a bare X server (no window manager, no running JUCEApplication) meet
// errors JUCE would otherwise handle itself; they must not end the run.
int ignoreXErrors (Display*, XErrorEvent*)
{
    return 0;
}
} // namespace

// JUCE's message manager and singletons live for the whole run, as in a host. Preset
// files and preferences point into a folder of the run's own, so that no test reads
// or writes the user's.
int main (int argc, char** argv)
{
    ::testing::InitGoogleTest (&argc, argv);
    if (std::getenv ("DISPLAY") != nullptr)
    {
        XInitThreads();
        XSetErrorHandler (ignoreXErrors);
        XSetIOErrorHandler ([] (Display*) { return 0; });
    }
    juce::ScopedJuceInitialiser_GUI juce;

    const juce::TemporaryFile holder ("zolk-tests");
    const auto folder = holder.getFile();
    folder.createDirectory();
    TRQPresetFiles::setLocations (
        {folder.getChildFile ("user/HvnUserPresets.json"), folder.getChildFile ("factory/TQPresets.json")});
    TRQUserPrefs::Store::setFile (folder.getChildFile ("prefs/Preferences.json"));

    const int result = RUN_ALL_TESTS();
    folder.deleteRecursively();
    return result;
}
