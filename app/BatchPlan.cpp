#include "app/BatchPlan.h"

#include "app/AudioFileWriter.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <set>
#include <unistd.h>

namespace
{
// The path with links and ".." resolved, so that two names of one file compare equal.
juce::String canonical (const juce::File& file)
{
    std::error_code error;
    const auto path = std::filesystem::weakly_canonical (file.getFullPathName().toStdString(), error);
    return error ? file.getFullPathName() : juce::String (path.string());
}

bool isSameOrInside (const juce::String& path, const juce::String& folder)
{
    return path == folder || path.startsWith (folder.trimCharactersAtEnd ("/") + "/");
}

// Creates the folder when needed and a file in it, and removes that again.
void checkWritable (const juce::File& folder)
{
    if (!folder.isDirectory())
    {
        const auto created = folder.createDirectory();
        if (created.failed())
            throw RenderUsageError ("cannot create the output folder " + folder.getFullPathName() + ": " +
                                    created.getErrorMessage());
    }
    const auto probe = folder.getChildFile (".zolk-render-probe-" + juce::String (getpid()));
    const int fd =
        ::open (probe.getFullPathName().toRawUTF8(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0)
        throw RenderUsageError ("cannot write in the output folder " + folder.getFullPathName() + ": " +
                                juce::String (std::strerror (errno)));
    ::close (fd);
    probe.deleteFile();
}
} // namespace

bool BatchPlan::isAudioFileName (const juce::String& name)
{
    for (auto extension : {".wav", ".wave", ".aif", ".aiff", ".aifc", ".flac"})
        if (name.endsWithIgnoreCase (extension))
            return true;
    return false;
}

std::vector<BatchPlan::Item> BatchPlan::make (const RenderOptions& options)
{
    const auto outDir = options.outDir;
    if (outDir.existsAsFile())
        throw RenderUsageError ("the output folder " + outDir.getFullPathName() + " is a file");
    const auto outPath = canonical (outDir);

    std::vector<Item> items;
    std::map<juce::String, juce::String> inputByOutput; // canonical paths
    std::set<juce::String> inputPaths;

    const auto add = [&] (const juce::File& input, const juce::String& relativePath)
    {
        const auto name = AudioFileWriter::fileNameFor (relativePath, options.format);
        const auto output = outDir.getChildFile (name);
        const auto inputPath = canonical (input);
        const auto [existing, isNew] = inputByOutput.emplace (canonical (output), inputPath);
        if (!isNew && existing->second != inputPath)
            throw RenderUsageError (existing->second + " and " + inputPath + " would both be written to " +
                                    output.getFullPathName());
        if (isNew)
        {
            items.push_back ({input, output});
            inputPaths.insert (inputPath);
        }
    };

    for (const auto& input : options.inputs)
    {
        if (input.isDirectory())
        {
            const auto folderPath = canonical (input);
            if (isSameOrInside (outPath, folderPath))
                throw RenderUsageError ("the output folder " + outDir.getFullPathName() +
                                        (outPath == folderPath ? " is" : " lies inside") +
                                        " the input folder " + input.getFullPathName());

            auto files = input.findChildFiles (juce::File::findFiles | juce::File::ignoreHiddenFiles, true,
                                               "*", juce::File::FollowSymlinks::noCycles);
            files.sort();
            for (const auto& file : files)
                if (isAudioFileName (file.getFileName()))
                    add (file, file.getRelativePathFrom (input));
        }
        else if (input.existsAsFile())
            add (input, input.getFileName());
        else
            throw RenderUsageError ("no such file or folder: " + input.getFullPathName());
    }

    if (items.empty())
        throw RenderUsageError ("no WAV, AIFF or FLAC files in " + options.inputs[0].getFullPathName() +
                                (options.inputs.size() > 1 ? " and the other inputs" : ""));
    for (const auto& [output, input] : inputByOutput)
        if (inputPaths.count (output) != 0)
            throw RenderUsageError ("the output " + output + " would overwrite an input");

    checkWritable (outDir);
    return items;
}
