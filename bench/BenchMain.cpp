#include <benchmark/benchmark.h>
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

// JUCE lives for the whole run, as in a host, and shuts down before the process's
// own statics (the embedded typefaces among them) go.
int main (int argc, char** argv)
{
    if (std::getenv ("DISPLAY") != nullptr)
    {
        XInitThreads();
        XSetErrorHandler (ignoreXErrors);
        XSetIOErrorHandler ([] (Display*) { return 0; });
    }
    juce::ScopedJuceInitialiser_GUI juce;
    benchmark::Initialize (&argc, argv);
    if (benchmark::ReportUnrecognizedArguments (argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
