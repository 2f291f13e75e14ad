#include "app/RenderSession.h"

#include <iostream>

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
