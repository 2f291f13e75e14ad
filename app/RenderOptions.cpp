#include "app/RenderOptions.h"

namespace
{
juce::String takeValue (const juce::StringArray& args, int& i, const juce::String& option)
{
    if (i + 1 >= args.size())
        throw RenderUsageError (option + " needs a value");
    return args[++i];
}

juce::File takeFile (const juce::StringArray& args, int& i, const juce::String& option)
{
    return juce::File::getCurrentWorkingDirectory().getChildFile (takeValue (args, i, option));
}

int parsePositiveInt (const juce::String& text, const juce::String& option, int low, int high)
{
    if (!text.containsOnly ("0123456789") || text.isEmpty())
        throw RenderUsageError (option + " expects a whole number, got \"" + text + "\"");
    const auto value = text.getLargeIntValue();
    if (value < low || value > high)
        throw RenderUsageError (option + " must lie between " + juce::String (low) + " and " +
                                juce::String (high) + ", got " + text);
    return static_cast<int> (value);
}

OutputFormat parseFormat (const juce::String& text)
{
    static const std::pair<const char*, OutputFormat> names[] = {{"wav16", OutputFormat::wav16},
                                                                 {"wav24", OutputFormat::wav24},
                                                                 {"wav32f", OutputFormat::wav32f},
                                                                 {"flac16", OutputFormat::flac16},
                                                                 {"flac24", OutputFormat::flac24}};
    for (const auto& [name, format] : names)
        if (text == name)
            return format;
    throw RenderUsageError ("--format expects wav16, wav24, wav32f, flac16 or flac24, got \"" + text + "\"");
}
} // namespace

RenderOptions RenderOptions::parse (const juce::StringArray& args)
{
    RenderOptions options;
    juce::StringArray files;
    juce::StringArray batchOnly, singleOnly; // options given that belong to one mode

    for (int i = 0; i < args.size(); ++i)
    {
        const auto& arg = args[i];

        if (arg == "--set")
        {
            const auto assignment = takeValue (args, i, arg);
            if (!assignment.contains ("="))
                throw RenderUsageError ("--set expects NAME=VALUE, got \"" + assignment + "\"");
            options.settings.emplace_back (assignment.upToFirstOccurrenceOf ("=", false, false).trim(),
                                           assignment.fromFirstOccurrenceOf ("=", false, false).trim());
        }
        else if (arg == "--hq")
            options.settings.emplace_back ("HQMode", "1");
        else if (arg == "--block")
            options.blockSize = parsePositiveInt (takeValue (args, i, arg), arg, 1, 65536);
        else if (arg == "--random-blocks")
            options.randomBlocks = true;
        else if (arg == "--rate")
        {
            options.demoRate = parsePositiveInt (takeValue (args, i, arg), arg, 8000, 768000);
            singleOnly.add (arg);
        }
        else if (arg == "--sidechain")
            options.sidechain = takeFile (args, i, arg);
        else if (arg == "--state-in")
            options.stateIn = takeFile (args, i, arg);
        else if (arg == "--state-out")
        {
            options.stateOut = takeFile (args, i, arg);
            singleOnly.add (arg);
        }
        else if (arg == "--preset")
            options.preset = takeValue (args, i, arg);
        else if (arg == "--list-presets")
        {
            options.listPresets = true;
            singleOnly.add (arg);
        }
        else if (arg == "--out-dir")
            options.outDir = takeFile (args, i, arg);
        else if (arg == "--jobs")
        {
            options.jobs = parsePositiveInt (takeValue (args, i, arg), arg, 1, 256);
            batchOnly.add (arg);
        }
        else if (arg == "--format")
        {
            options.format = parseFormat (takeValue (args, i, arg));
            batchOnly.add (arg);
        }
        else if (arg == "--overwrite")
        {
            options.overwrite = true;
            batchOnly.add (arg);
        }
        else if (arg == "--bypass")
            options.bypass = true;
        else if (arg == "--json")
            options.json = true;
        else if (arg.startsWith ("--"))
            throw RenderUsageError ("unknown option " + arg);
        else
            files.add (arg);
    }

    const auto cwd = juce::File::getCurrentWorkingDirectory();
    if (options.isBatch())
    {
        if (!singleOnly.isEmpty())
            throw RenderUsageError (singleOnly[0] + " does not go with --out-dir");
        if (files.isEmpty())
            throw RenderUsageError ("no input file or folder given");
        for (const auto& file : files)
            options.inputs.add (cwd.getChildFile (file));
        return options;
    }
    if (!batchOnly.isEmpty())
        throw RenderUsageError (batchOnly[0] + " needs --out-dir");

    if (files.isEmpty() && !options.listPresets)
        throw RenderUsageError ("no output file given");
    if (files.size() > 2)
        throw RenderUsageError ("too many files: " + files.joinIntoString (" "));

    // Listing presets renders nothing: a single file is the input whose layout chooses
    // the presets on offer.
    if (options.listPresets)
    {
        if (files.size() > 1)
            throw RenderUsageError ("--list-presets takes at most an input file");
        if (files.size() == 1)
            options.input = cwd.getChildFile (files[0]);
        return options;
    }
    options.output = cwd.getChildFile (files[files.size() - 1]);
    if (files.size() == 2)
        options.input = cwd.getChildFile (files[0]);

    return options;
}

juce::String RenderOptions::usage()
{
    return "usage: zolk-render [--state-in FILE] [--preset NAME] [--set NAME=VALUE]... [--hq] [--block N]\n"
           "                   [--random-blocks] [--rate HZ] [--sidechain FILE.wav] [--bypass]\n"
           "                   [--state-out FILE] [--json] [INPUT.wav] OUTPUT.wav\n"
           "       zolk-render [options] [--jobs N] [--format F] [--overwrite] --out-dir DIR INPUT...\n"
           "       zolk-render --list-presets [INPUT.wav]\n"
           "\n"
           "With --out-dir, every INPUT file, and every WAV, AIFF or FLAC file in an INPUT folder and\n"
           "its subfolders, is rendered to the same relative path under DIR, lined up with its input\n"
           "and exactly as long. Outputs that exist and are complete are skipped.\n"
           "  --jobs N            files rendered at once (default: one per core)\n"
           "  --format F          wav16, wav24, wav32f, flac16 or flac24 (default: the input's own)\n"
           "  --overwrite         render outputs again that are already there\n"
           "  --json              one JSON object per file, then a summary object\n"
           "Example: zolk-render --preset \"Dusty Breakbeat\" --out-dir Processed/Drums Samples/Drums";
}
