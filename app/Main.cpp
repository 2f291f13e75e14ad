#include "app/BatchRender.h"
#include "app/RenderSession.h"

#include <atomic>
#include <csignal>
#include <iostream>
#include <unistd.h>

namespace
{
std::atomic<bool> stopRequested{false};
volatile std::sig_atomic_t stopSignal = 0;

// A batch stops at the first Ctrl-C, kill or closed terminal, removes the files it
// was writing and then ends by that signal; a second one ends it at once.
void requestStop (int signal)
{
    stopSignal = signal;
    stopRequested = true;
    std::signal (signal, SIG_DFL);
}

int renderBatch (const RenderOptions& options)
{
    for (int signal : {SIGINT, SIGTERM, SIGHUP})
        std::signal (signal, requestStop);

    const int code =
        BatchRender (options, std::cout, std::cerr, isatty (STDERR_FILENO) != 0).run (stopRequested);
    if (stopSignal != 0)
    {
        std::cout.flush();
        std::raise (stopSignal);
    }
    return code;
}
} // namespace

int main (int argc, char* argv[])
{
    juce::ScopedJuceInitialiser_GUI juce;

    juce::StringArray arguments;
    for (int i = 1; i < argc; ++i)
        arguments.add (juce::String::fromUTF8 (argv[i]));

    if (arguments.contains ("--help") || arguments.contains ("-h"))
    {
        std::cout << RenderOptions::usage() << std::endl;
        return 0;
    }

    try
    {
        const auto options = RenderOptions::parse (arguments);
        if (options.isBatch())
            return renderBatch (options);
        if (options.listPresets)
        {
            std::cout << RenderSession (options).listPresets();
            return 0;
        }
        const auto report = RenderSession (options).run();
        std::cout << (options.json ? report.toJson() + "\n" : report.toText());
        return 0;
    }
    catch (const RenderUsageError& e)
    {
        std::cerr << "zolk-render: " << e.what() << std::endl;
        return 2;
    }
    catch (const std::exception& e)
    {
        std::cerr << "zolk-render: " << e.what() << std::endl;
        return 1;
    }
}
