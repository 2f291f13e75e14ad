#pragma once

#include <juce_core/juce_core.h>

#include <stdexcept>
#include <utility>
#include <vector>

// A mistake in how zolk-render was called: reported in one line, exit code 2.
class RenderUsageError : public std::runtime_error
{
public:
    explicit RenderUsageError (const juce::String& message)
        : std::runtime_error (message.toStdString())
    {
    }
};

// What a batch writes: the input's own format, or one chosen for every file.
enum class OutputFormat
{
    asInput,
    wav16,
    wav24,
    wav32f,
    flac16,
    flac24
};

// The command line of zolk-render, parsed.
struct RenderOptions
{
    juce::File input; // none: render the built-in demo
    juce::File output;
    juce::File sidechain;                                        // none: the sidechain bus carries silence
    juce::File stateIn;                                          // a saved state to restore first
    juce::String preset;                                         // a preset's name
    std::vector<std::pair<juce::String, juce::String>> settings; // parameter, value in real units
    juce::File stateOut;                                         // where to write the state after the render
    bool listPresets = false;                                    // print the presets instead of rendering
    int blockSize = 512;
    bool randomBlocks = false;
    double demoRate = 48000.0;
    bool bypass = false;
    bool json = false;

    // Batch mode, chosen by --out-dir: every input file or folder rendered into outDir.
    juce::File outDir; // none: a single render
    juce::Array<juce::File> inputs;
    int jobs = 0; // files rendered at once; 0: one per core
    OutputFormat format = OutputFormat::asInput;
    bool overwrite = false; // render outputs again that exist and are complete

    bool isBatch() const { return outDir != juce::File(); }

    static RenderOptions parse (const juce::StringArray& arguments);
    static juce::String usage();
};
