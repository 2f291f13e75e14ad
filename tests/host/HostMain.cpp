#include <gtest/gtest.h>
#include <juce_events/juce_events.h>

#include <X11/Xlib.h>

#include <cstdlib>

int main (int argc, char** argv)
{
    ::testing::InitGoogleTest (&argc, argv);
    // Plug-in windows on a bare X server meet errors JUCE would handle itself
    // inside a JUCEApplication; they must not end the run.
    if (std::getenv ("DISPLAY") != nullptr)
    {
        XInitThreads();
        XSetErrorHandler ([] (Display*, XErrorEvent*) { return 0; });
    }
    juce::ScopedJuceInitialiser_GUI juce;
    return RUN_ALL_TESTS();
}
