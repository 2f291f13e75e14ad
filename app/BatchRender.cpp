#include "app/BatchRender.h"

#include "app/AudioFileReader.h"
#include "app/RenderSession.h"
#include "core/TRQAudioProcessor.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <sched.h>
#include <thread>

namespace
{
juce::String clock (double seconds)
{
    const auto s = static_cast<int64_t> (seconds + 0.5);
    const auto hours = s / 3600, minutes = s / 60 % 60;
    return (hours > 0 ? juce::String (hours) + ":" + juce::String (minutes).paddedLeft ('0', 2)
                      : juce::String (minutes)) +
           ":" + juce::String (s % 60).paddedLeft ('0', 2);
}

juce::String jsonPaths (const BatchPlan::Item& item)
{
    return "\"input\": " + juce::JSON::toString (item.input.getFullPathName()) +
           ", \"output\": " + juce::JSON::toString (item.output.getFullPathName());
}
} // namespace

BatchRender::BatchRender (RenderOptions o, std::ostream& outStream, std::ostream& errStream, bool progress)
    : options (std::move (o))
    , out (outStream)
    , err (errStream)
    , showProgress (progress)
{
}

int BatchRender::defaultJobs()
{
    cpu_set_t cpus;
    if (sched_getaffinity (0, sizeof (cpus), &cpus) == 0)
        return std::max (1, CPU_COUNT (&cpus));
    return static_cast<int> (std::max (1u, std::thread::hardware_concurrency()));
}

void BatchRender::checkSettings() const
{
    // Presets are offered by layout: the settings must hold for one of them at least.
    // A file whose layout refuses them fails on its own.
    try
    {
        RenderSession::makeConfiguredProcessor (options, 2, 2, 2);
    }
    catch (const RenderUsageError&)
    {
        RenderSession::makeConfiguredProcessor (options, 1, 1, 1);
    }

    if (options.sidechain != juce::File())
    {
        if (!options.sidechain.existsAsFile())
            throw RenderUsageError ("cannot read sidechain " + options.sidechain.getFullPathName() +
                                    ": no such file");
        try
        {
            const AudioFileReader sidechain (options.sidechain);
            if (sidechain.getNumChannels() > 2)
                throw RenderUsageError ("sidechain " + options.sidechain.getFullPathName() + " has " +
                                        juce::String (sidechain.getNumChannels()) +
                                        " channels; 1 or 2 are supported");
        }
        catch (const AudioFileError& e)
        {
            throw RenderUsageError ("cannot read sidechain " + options.sidechain.getFullPathName() + ": " +
                                    e.what());
        }
    }
}

int BatchRender::run (const std::atomic<bool>& stop)
{
    checkSettings();
    const auto items = BatchPlan::make (options);

    // The headers give the seconds to render, for the time left.
    std::vector<double> seconds (items.size(), 0.0);
    for (size_t i = 0; i < items.size() && showProgress; ++i)
    {
        try
        {
            const AudioFileReader reader (items[i].input);
            seconds[i] = static_cast<double> (reader.getLength()) / reader.getSampleRate();
            totalSeconds += seconds[i];
        }
        catch (const AudioFileError&)
        {
            // Reported when its turn comes.
        }
    }

    jobs =
        static_cast<int> (std::min<size_t> (options.jobs > 0 ? options.jobs : defaultJobs(), items.size()));
    started = std::chrono::steady_clock::now();

    struct Finished
    {
        size_t index;
        FileRender::Outcome outcome;
        std::unique_ptr<FileRender> render;
    };
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Finished> finished;
    std::atomic<size_t> next{0};
    int running = jobs;

    std::vector<std::thread> workers;
    for (int j = 0; j < jobs; ++j)
        workers.emplace_back (
            [&]
            {
                for (size_t i = next++; i < items.size() && !stop.load(); i = next++)
                {
                    auto render = std::make_unique<FileRender> (options, items[i]);
                    const auto outcome = render->run (stop, audioMicroseconds);
                    const std::lock_guard<std::mutex> lock (mutex);
                    finished.push_back ({i, outcome, std::move (render)});
                    changed.notify_one();
                }
                const std::lock_guard<std::mutex> lock (mutex);
                --running;
                changed.notify_one();
            });

    bool stopped = false;
    for (bool done = false; !done;)
    {
        std::deque<Finished> batch;
        {
            std::unique_lock<std::mutex> lock (mutex);
            changed.wait_for (lock, std::chrono::milliseconds (250),
                              [&] { return !finished.empty() || running == 0; });
            batch.swap (finished);
            done = running == 0;
        }
        for (const auto& f : batch)
        {
            stopped = stopped || f.outcome == FileRender::Outcome::stopped;
            if (f.outcome == FileRender::Outcome::skipped)
                skippedSeconds += seconds[f.index];
            print (items[f.index], f.outcome, *f.render);
        }
        if (showProgress)
            drawProgress (items.size());
    }
    for (auto& worker : workers)
        worker.join();

    stopped = stopped || stop.load();
    clearProgress();
    printSummary (items.size(), stopped);
    return failed > 0 ? 1 : 0;
}

void BatchRender::print (const BatchPlan::Item& item, FileRender::Outcome outcome, const FileRender& render)
{
    // Both streams may go to the terminal the progress line is on.
    if (options.json || outcome == FileRender::Outcome::failed)
        clearProgress();
    switch (outcome)
    {
    case FileRender::Outcome::rendered:
        ++rendered;
        if (options.json)
            out << "{" << jsonPaths (item) << ", " << render.getReport().toJsonMembers() << "}" << std::endl;
        break;
    case FileRender::Outcome::skipped:
        ++skipped;
        if (options.json)
            out << "{" << jsonPaths (item) << ", \"skipped\": true}" << std::endl;
        break;
    case FileRender::Outcome::failed:
        ++failed;
        err << "zolk-render: " << item.input.getFullPathName() << ": " << render.getError() << std::endl;
        if (options.json)
            out << "{" << jsonPaths (item) << ", \"error\": " << juce::JSON::toString (render.getError())
                << "}" << std::endl;
        break;
    case FileRender::Outcome::stopped:
        break;
    }
}

void BatchRender::printSummary (size_t files, bool stopped)
{
    const double elapsed = std::chrono::duration<double> (std::chrono::steady_clock::now() - started).count();
    const double audio = static_cast<double> (audioMicroseconds.load()) / 1.0e6;
    const double factor = elapsed > 0.0 ? audio / elapsed : 0.0;
    if (options.json)
    {
        out << "{\"files\": " << files << ", \"rendered\": " << rendered << ", \"skipped\": " << skipped
            << ", \"failed\": " << failed << ", \"interrupted\": " << (stopped ? "true" : "false")
            << ", \"jobs\": " << jobs << ", \"audio_seconds\": " << juce::String (audio, 1)
            << ", \"seconds\": " << juce::String (elapsed, 2)
            << ", \"realtime_factor\": " << juce::String (factor, 1) << "}" << std::endl;
        return;
    }
    juce::String text;
    text << (stopped ? "interrupted: " : "") << juce::String (files) << " files: " << juce::String (rendered)
         << " rendered, " << juce::String (skipped) << " complete already, " << juce::String (failed)
         << " failed; " << juce::String (audio, 1) << " s of audio in " << juce::String (elapsed, 1) << " s, "
         << juce::String (factor, 1) << "x real time";
    out << text << std::endl;
}

void BatchRender::drawProgress (size_t files)
{
    const double elapsed = std::chrono::duration<double> (std::chrono::steady_clock::now() - started).count();
    const double audio = static_cast<double> (audioMicroseconds.load()) / 1.0e6;
    const double factor = elapsed > 0.0 ? audio / elapsed : 0.0;
    const double left = totalSeconds - skippedSeconds - audio;

    juce::String line;
    line << juce::String (rendered + skipped + failed) << "/" << juce::String (files) << " files, "
         << juce::String (audio, 1) << " s of audio, " << juce::String (factor, 1) << "x real time, "
         << (audio > 0.0 && elapsed > 0.5 ? clock (std::max (0.0, left) / factor) : juce::String ("-:--"))
         << " left";
    err << "\r\033[K" << line << std::flush;
    progressShown = true;
}

void BatchRender::clearProgress()
{
    if (progressShown)
        err << "\r\033[K" << std::flush;
    progressShown = false;
}
