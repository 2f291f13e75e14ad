#include "app/BatchRender.h"
#include "app/AudioFileReader.h"
#include "app/AudioFileWriter.h"
#include "app/RenderSession.h"
#include "support/PresetFolder.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <sndfile.h>

#include <fcntl.h>
#include <fstream>
#include <pty.h>
#include <signal.h>
#include <spawn.h>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace
{
const juce::String binary = juce::String (ZOLK_BINARY_DIR) + "/app/zolk-render";

juce::AudioBuffer<float> clickAt (int at, int channels, int length)
{
    juce::AudioBuffer<float> audio (channels, length);
    audio.clear();
    for (int c = 0; c < channels; ++c)
        audio.setSample (c, at, 0.5f);
    return audio;
}

juce::AudioBuffer<float> noise (int channels, int length)
{
    juce::Random random (7);
    juce::AudioBuffer<float> audio (channels, length);
    for (int c = 0; c < channels; ++c)
        for (int i = 0; i < length; ++i)
            audio.setSample (c, i, 0.3f * (random.nextFloat() * 2.0f - 1.0f));
    return audio;
}

void write (const juce::File& file, const juce::AudioBuffer<float>& audio, double rate,
            int format = SF_FORMAT_WAV | SF_FORMAT_PCM_16)
{
    AudioFileWriter writer (file, format, audio.getNumChannels(), rate);
    writer.write (audio, 0, audio.getNumSamples());
    writer.commit();
}

// Every file below the folder, hidden ones too, by path relative to it.
juce::StringArray tree (const juce::File& folder)
{
    juce::StringArray paths;
    for (const auto& file : folder.findChildFiles (juce::File::findFilesAndDirectories, true, "*"))
        paths.add (file.getRelativePathFrom (folder));
    paths.sort (false);
    return paths;
}

struct Batch
{
    int code;
    std::string out, err;
};

Batch batch (const juce::StringArray& args)
{
    std::ostringstream out, err;
    std::atomic<bool> stop{false};
    const int code = BatchRender (RenderOptions::parse (args), out, err, false).run (stop);
    return {code, out.str(), err.str()};
}

juce::var lastJsonLine (const std::string& text)
{
    return juce::JSON::parse (juce::StringArray::fromLines (juce::String (text).trim()).strings.getLast());
}

// zolk-render in a process of its own, standard output and error into files (or the
// error into a descriptor given), so that a test can signal it.
class Child
{
public:
    Child (const juce::StringArray& args, const juce::File& folder, int errorFd = -1)
        : out (folder.getChildFile ("child.out"))
        , err (folder.getChildFile ("child.err"))
    {
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init (&actions);
        posix_spawn_file_actions_addopen (&actions, 1, out.getFullPathName().toRawUTF8(),
                                          O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (errorFd >= 0)
            posix_spawn_file_actions_adddup2 (&actions, errorFd, 2);
        else
            posix_spawn_file_actions_addopen (&actions, 2, err.getFullPathName().toRawUTF8(),
                                              O_WRONLY | O_CREAT | O_TRUNC, 0644);
        std::vector<std::string> strings{binary.toStdString()};
        for (const auto& arg : args)
            strings.push_back (arg.toStdString());
        std::vector<char*> argv;
        for (auto& s : strings)
            argv.push_back (s.data());
        argv.push_back (nullptr);
        if (posix_spawn (&pid, argv[0], &actions, nullptr, argv.data(), environ) != 0)
            pid = -1;
        posix_spawn_file_actions_destroy (&actions);
    }

    int wait()
    {
        int status = 0;
        waitpid (pid, &status, 0);
        return status;
    }

    pid_t pid = -1;
    juce::File out, err;
};
} // namespace

TEST (BatchRender, OutputsKeepPathsAndFormatsAndLineUpWithTheirInputsAtEveryRate)
{
    TempFolder tmp;
    struct Source
    {
        const char* path;
        double rate;
        int channels;
        int format;
    };
    const Source sources[] = {
        {"Drums & Loops/kick 'one' \"x\" ドラム.wav", 44100.0, 1, SF_FORMAT_WAV | SF_FORMAT_PCM_16},
        {"keys/ep.aiff", 48000.0, 2, SF_FORMAT_AIFF | SF_FORMAT_PCM_24},
        {"keys/pad.flac", 88200.0, 2, SF_FORMAT_FLAC | SF_FORMAT_PCM_16},
        {"loops/96k.wav", 96000.0, 2, SF_FORMAT_WAV | SF_FORMAT_FLOAT},
        {"loops/176k.aif", 176400.0, 1, SF_FORMAT_AIFF | SF_FORMAT_PCM_16},
        {"air.flac", 192000.0, 2, SF_FORMAT_FLAC | SF_FORMAT_PCM_24},
    };
    // Past the first 0.2 s, where the mix still eases from its default towards 0.
    const auto clickSample = [&] (size_t i)
    { return static_cast<int> (0.2 * sources[i].rate) + 37 * static_cast<int> (i); };
    const auto lib = tmp / "lib";
    for (size_t i = 0; i < std::size (sources); ++i)
    {
        const int at = clickSample (i);
        write (lib.getChildFile (juce::String::fromUTF8 (sources[i].path)),
               clickAt (at, sources[i].channels, 4 * at), sources[i].rate, sources[i].format);
    }
    // Neither is audio to render: folders are searched for audio files, hidden ones aside.
    lib.getChildFile ("readme.txt").replaceWithText ("one shots");
    lib.getChildFile ("keys/._ep.aiff").replaceWithText ("resource fork");

    // With no mix the chain passes the click through, delayed by the latency that is cut.
    for (const bool hq : {false, true})
    {
        SCOPED_TRACE (hq ? "HQ, FLAC 24" : "standard, own format");
        const auto out = tmp / (hq ? "hq" : "standard");
        juce::StringArray args{
            "--set", "MasterMix=0", "--jobs", "2", "--out-dir", out.getFullPathName(), lib.getFullPathName()};
        if (hq)
            args.addArray ({"--hq", "--format", "flac24"});
        const auto result = batch (args);
        EXPECT_EQ (result.code, 0) << result.err;
        EXPECT_EQ (tree (out).size(), 9) << tree (out).joinIntoString (", ") << ": the 6 files and 3 folders";

        for (size_t i = 0; i < std::size (sources); ++i)
        {
            SCOPED_TRACE (sources[i].path);
            const int at = clickSample (i);
            const auto name = AudioFileWriter::fileNameFor (
                juce::String::fromUTF8 (sources[i].path), hq ? OutputFormat::flac24 : OutputFormat::asInput);
            const auto file = out.getChildFile (name);
            ASSERT_TRUE (file.existsAsFile());
            const AudioFileReader reader (file);
            EXPECT_EQ (reader.getFormat(), hq ? SF_FORMAT_FLAC | SF_FORMAT_PCM_24 : sources[i].format);
            EXPECT_EQ (reader.getSampleRate(), sources[i].rate);
            EXPECT_EQ (reader.getNumChannels(), sources[i].channels);
            EXPECT_EQ (reader.getLength(), 4 * at);

            const auto audio = AudioFileReader (file).readAll();
            for (int c = 0; c < audio.getNumChannels(); ++c)
            {
                int peak = 0;
                for (int s = 0; s < audio.getNumSamples(); ++s)
                    if (std::abs (audio.getSample (c, s)) > std::abs (audio.getSample (c, peak)))
                        peak = s;
                EXPECT_EQ (peak, at) << "channel " << c;
                // HQ's converters spread a click over its neighbours.
                EXPECT_NEAR (audio.getSample (c, peak), 0.5f, hq ? 0.1f : 1.0e-4f);
            }
        }
    }
}

TEST (BatchRender, EveryFileIsTheSingleRenderWithoutItsDelayAndIsNotRenderedTwice)
{
    TempFolder tmp;
    PresetFolder presets;
    PresetFolder::write (
        presets.factory(),
        {PresetFolder::section ("F", {PresetFolder::fullPreset ("Squeeze", "f-1", {{2, 90.0f}})})});
    const auto input = tmp / "loop.wav";
    const auto sidechain = tmp / "side.wav";
    write (input, noise (2, 72000), 48000.0, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    write (sidechain, noise (1, 48000), 48000.0); // shorter: silence after its end

    const juce::StringArray settings{"--preset",      "Squeeze",     "--set",
                                     "OutputGain=-2", "--sidechain", sidechain.getFullPathName(),
                                     "--block",       "64",          "--random-blocks"};
    auto single = settings;
    single.addArray ({input.getFullPathName(), (tmp / "single.wav").getFullPathName()});
    const int latency = RenderSession (RenderOptions::parse (single)).run().latencySamples;

    auto args = settings;
    args.addArray ({"--json", "--out-dir", (tmp / "out").getFullPathName(), input.getFullPathName()});
    auto result = batch (args);
    ASSERT_EQ (result.code, 0) << result.err;
    const auto report = juce::JSON::parse (juce::StringArray::fromLines (juce::String (result.out))[0]);
    EXPECT_EQ (report["input"].toString(), input.getFullPathName());
    EXPECT_EQ (static_cast<int> (report["latency_samples"]), latency);
    EXPECT_EQ (report["preset"].toString(), "Squeeze");
    EXPECT_TRUE (static_cast<bool> (report["preset_modified"]));

    const auto whole = AudioFileReader (tmp / "single.wav").readAll();
    const auto trimmed = AudioFileReader (tmp / "out/loop.wav").readAll();
    ASSERT_EQ (trimmed.getNumSamples(), 72000);
    int differing = 0;
    for (int c = 0; c < 2; ++c)
        for (int i = 0; i < trimmed.getNumSamples(); ++i)
            differing += trimmed.getSample (c, i) != whole.getSample (c, i + latency);
    EXPECT_EQ (differing, 0);

    // Run again: a complete output stays; one cut short, or --overwrite, renders again.
    const auto counts = [&] (const juce::StringArray& extra)
    {
        auto again = args;
        again.addArray (extra);
        const auto summary = lastJsonLine (batch (again).out);
        return std::make_pair (static_cast<int> (summary["rendered"]), static_cast<int> (summary["skipped"]));
    };
    EXPECT_EQ (counts ({}), std::make_pair (0, 1));
    juce::MemoryBlock bytes;
    (tmp / "out/loop.wav").loadFileAsData (bytes);
    (tmp / "out/loop.wav").replaceWithData (bytes.getData(), bytes.getSize() / 2);
    EXPECT_EQ (counts ({}), std::make_pair (1, 0));
    EXPECT_EQ (counts ({"--overwrite"}), std::make_pair (1, 0));
}

TEST (BatchRender, RefusesABadCommandBeforeWritingAnything)
{
    TempFolder tmp;
    const auto lib = tmp / "lib", other = tmp / "other", mixed = tmp / "mixed", out = tmp / "out";
    const auto one = clickAt (10, 1, 100);
    write (lib.getChildFile ("kick.wav"), one, 48000.0);
    write (other.getChildFile ("kick.wav"), one, 48000.0);
    write (mixed.getChildFile ("kick.wav"), one, 48000.0);
    write (mixed.getChildFile ("kick.aif"), one, 48000.0, SF_FORMAT_AIFF | SF_FORMAT_PCM_16);
    (tmp / "notes").createDirectory();
    (tmp / "a-file").replaceWithText ("x");

    // A folder nothing may be written in; root may write anywhere but in /sys.
    const auto locked = tmp / "locked";
    locked.createDirectory();
    chmod (locked.getFullPathName().toRawUTF8(), 0555);
    const auto unwritable = geteuid() == 0 ? juce::String ("/sys/kernel") : locked.getFullPathName();

    const auto before = tree (tmp.dir);
    const auto p = [] (const juce::File& f) { return f.getFullPathName(); };
    const juce::StringArray cases[] = {
        {"--out-dir", p (lib), p (lib)},
        {"--out-dir", p (lib.getChildFile ("processed")), p (lib)},
        {"--out-dir", p (tmp / "a-file"), p (lib)},
        {"--out-dir", p (out), p (lib), p (other)},
        {"--format", "wav16", "--out-dir", p (out), p (mixed)},
        {"--out-dir", p (lib), p (lib.getChildFile ("kick.wav"))},
        {"--out-dir", p (out), p (tmp / "missing.wav")},
        {"--out-dir", p (out), p (tmp / "notes")},
        {"--out-dir", unwritable, p (lib)},
        {"--preset", "No Such Preset", "--out-dir", p (out), p (lib)},
        {"--set", "CompressionAmount=300", "--out-dir", p (out), p (lib)},
        {"--sidechain", p (tmp / "missing.wav"), "--out-dir", p (out), p (lib)},
        {"--rate", "44100", "--out-dir", p (out), p (lib)},
        {"--state-out", p (tmp / "s.state"), "--out-dir", p (out), p (lib)},
        {"--jobs", "0", "--out-dir", p (out), p (lib)},
        {"--format", "mp3", "--out-dir", p (out), p (lib)},
        {"--jobs", "2", p (out.getChildFile ("x.wav"))},
        {"--out-dir", p (out)},
    };
    for (const auto& args : cases)
    {
        EXPECT_THROW (batch (args), RenderUsageError) << args.joinIntoString (" ");
        EXPECT_EQ (tree (tmp.dir), before) << args.joinIntoString (" ");
    }
    chmod (locked.getFullPathName().toRawUTF8(), 0755);
}

TEST (BatchRender, ReportsEachBadFileInALineAndRendersTheRest)
{
    TempFolder tmp;
    const auto lib = tmp / "lib";
    const auto good = clickAt (100, 1, 9600);
    write (lib.getChildFile ("good.wav"), good, 48000.0);
    write (tmp / "side.wav", good, 48000.0);
    write (lib.getChildFile ("at44k.wav"), good, 44100.0); // the sidechain's rate differs
    write (lib.getChildFile ("six.wav"), clickAt (100, 6, 9600), 48000.0);
    write (lib.getChildFile ("silent.wav"), juce::AudioBuffer<float> (1, 0), 48000.0);
    lib.getChildFile ("text.wav").replaceWithText ("this is not audio");
    lib.getChildFile ("empty.wav").create();
    for (auto name : {"cut.wav", "cut.flac"})
    {
        const auto whole = tmp / name;
        write (whole, noise (2, 48000), 48000.0,
               whole.hasFileExtension ("flac") ? SF_FORMAT_FLAC | SF_FORMAT_PCM_16
                                               : SF_FORMAT_WAV | SF_FORMAT_PCM_16);
        juce::MemoryBlock bytes;
        whole.loadFileAsData (bytes);
        lib.getChildFile (name).replaceWithData (bytes.getData(), bytes.getSize() * 2 / 3);
    }
    const auto out = tmp / "out";

    Child refused ({"--out-dir", lib.getFullPathName(), lib.getFullPathName()}, tmp.dir);
    const int refusedStatus = refused.wait();
    EXPECT_EQ (WEXITSTATUS (refusedStatus), 2);
    EXPECT_EQ (juce::StringArray::fromLines (refused.err.loadFileAsString().trim()).size(), 1);

    Child child ({"--json", "--sidechain", (tmp / "side.wav").getFullPathName(), "--out-dir",
                  out.getFullPathName(), lib.getFullPathName()},
                 tmp.dir);
    const int status = child.wait();
    ASSERT_TRUE (WIFEXITED (status));
    EXPECT_EQ (WEXITSTATUS (status), 1);

    const auto problems = juce::StringArray::fromLines (child.err.loadFileAsString().trim());
    EXPECT_EQ (problems.size(), 7) << problems.joinIntoString ("\n");
    for (auto name : {"at44k.wav", "six.wav", "silent.wav", "text.wav", "empty.wav", "cut.wav", "cut.flac"})
    {
        const auto prefix = "zolk-render: " + lib.getChildFile (name).getFullPathName() + ": ";
        EXPECT_TRUE (std::any_of (problems.begin(), problems.end(),
                                  [&] (const juce::String& line) { return line.startsWith (prefix); }))
            << name << "\n"
            << problems.joinIntoString ("\n");
    }
    EXPECT_FALSE (child.err.loadFileAsString().containsChar ('\r')) << "no progress line off a terminal";

    const auto lines = juce::StringArray::fromLines (child.out.loadFileAsString().trim());
    ASSERT_EQ (lines.size(), 9);
    int errors = 0;
    for (int i = 0; i < 8; ++i)
        errors += juce::JSON::parse (lines[i]).hasProperty ("error");
    EXPECT_EQ (errors, 7);
    const auto summary = juce::JSON::parse (lines[8]);
    EXPECT_EQ (static_cast<int> (summary["files"]), 8);
    EXPECT_EQ (static_cast<int> (summary["rendered"]), 1);
    EXPECT_EQ (static_cast<int> (summary["failed"]), 7);
    EXPECT_EQ (tree (out), juce::StringArray ("good.wav"));
}

TEST (BatchRender, AnInterruptedBatchLeavesWholeFilesOnlyAndARerunFinishesIt)
{
    TempFolder tmp;
    const auto lib = tmp / "lib", out = tmp / "out";
    constexpr int files = 6, length = 20 * 48000;
    for (int i = 0; i < files; ++i)
        write (lib.getChildFile ("take" + juce::String (i) + ".wav"), noise (2, length), 48000.0);
    const juce::StringArray args{
        "--json", "--jobs", "2", "--out-dir", out.getFullPathName(), lib.getFullPathName()};

    Child first (args, tmp.dir);
    const auto deadline = juce::Time::getMillisecondCounter() + 60000;
    // Stopped once a file is whole, while others are under way.
    while (out.findChildFiles (juce::File::findFiles | juce::File::ignoreHiddenFiles, false).isEmpty() &&
           juce::Time::getMillisecondCounter() < deadline)
        std::this_thread::sleep_for (std::chrono::milliseconds (5));
    kill (first.pid, SIGINT);
    const int status = first.wait();
    EXPECT_TRUE (WIFSIGNALED (status) && WTERMSIG (status) == SIGINT) << status;

    const auto left = tree (out);
    for (const auto& name : left)
    {
        EXPECT_FALSE (name.startsWith (".")) << "a temporary was left: " << name;
        EXPECT_EQ (AudioFileReader (out.getChildFile (name)).getLength(), length) << name;
    }

    Child second (args, tmp.dir);
    EXPECT_EQ (WEXITSTATUS (second.wait()), 0);
    const auto summary = lastJsonLine (second.out.loadFileAsString().toStdString());
    EXPECT_EQ (static_cast<int> (summary["skipped"]), left.size());
    EXPECT_EQ (static_cast<int> (summary["rendered"]), files - left.size());
    EXPECT_EQ (tree (out).size(), files);
}

TEST (BatchRender, ShowsOneProgressLineOnATerminal)
{
    TempFolder tmp;
    for (auto name : {"a.wav", "b.wav"})
        write (tmp.dir.getChildFile ("lib").getChildFile (name), noise (2, 48000), 48000.0);

    int master = -1, slave = -1;
    ASSERT_EQ (openpty (&master, &slave, nullptr, nullptr, nullptr), 0);
    Child child ({"--out-dir", (tmp / "out").getFullPathName(), (tmp / "lib").getFullPathName()}, tmp.dir,
                 slave);
    close (slave);
    std::string seen;
    char buffer[4096];
    for (ssize_t n; (n = ::read (master, buffer, sizeof (buffer))) > 0;)
        seen.append (buffer, static_cast<size_t> (n));
    close (master);
    EXPECT_EQ (WEXITSTATUS (child.wait()), 0);

    // Each update rewrites the line from its start and erases what was left of it.
    EXPECT_NE (seen.find ("\r\033[K2/2 files, "), std::string::npos) << seen;
    EXPECT_NE (seen.find ("x real time, "), std::string::npos) << seen;
    EXPECT_NE (seen.find (" left"), std::string::npos) << seen;
    EXPECT_EQ (seen.find ('\n'), std::string::npos) << "the line is cleared at the end, not left behind";
    EXPECT_TRUE (child.out.loadFileAsString().startsWith ("2 files: 2 rendered"));
}

TEST (BatchRender, MemoryStaysFlatWhateverTheFilesLength)
{
    if (!(std::ofstream ("/proc/self/clear_refs") << "5").flush())
        GTEST_SKIP() << "the peak memory can't be reset here";

    // Peak memory from here on, counted from the memory in use now.
    const auto growthKb = []
    {
        std::ofstream ("/proc/self/clear_refs") << "5";
        const auto status = [] (const char* key)
        {
            const auto text = juce::File ("/proc/self/status").loadFileAsString();
            return text.fromFirstOccurrenceOf (key, false, false).trim().getLargeIntValue();
        };
        return [start = status ("VmRSS:"), status] { return status ("VmHWM:") - start; };
    };

    // Two minutes held whole as floats, in and out, would take 46 MB more.
    TempFolder tmp;
    for (int i = 0; i < 2; ++i)
        write (tmp.dir.getChildFile ("in" + juce::String (i) + ".wav"),
               clickAt (0, 1, (i == 0 ? 2 : 120) * 48000), 48000.0);
    int64_t peakKb[2] = {};
    for (int i = 0; i < 2; ++i)
    {
        const auto growth = growthKb();
        const auto in = tmp.dir.getChildFile ("in" + juce::String (i) + ".wav").getFullPathName();
        EXPECT_EQ (batch ({"--out-dir", (tmp / "out").getFullPathName(), in}).code, 0);
        peakKb[i] = growth();
    }
    EXPECT_LT (peakKb[1] - peakKb[0], 8 * 1024) << peakKb[0] << " kB against " << peakKb[1] << " kB";
}
