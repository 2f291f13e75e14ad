#pragma once

#include "app/BatchPlan.h"
#include "app/FileRender.h"

#include <atomic>
#include <chrono>
#include <ostream>

// zolk-render's batch mode: many files through the same settings, several at once,
// each on its own thread with its own processor. Only the calling thread writes to
// the streams.
class BatchRender
{
public:
    // `out` takes the JSON objects or the closing summary; `err` a line for each file
    // that fails and, when showProgress is set, the progress line.
    BatchRender (RenderOptions options, std::ostream& out, std::ostream& err, bool showProgress);

    // Throws RenderUsageError, before anything is written, for a mistake in the
    // command. Otherwise returns 0 when every file rendered or was complete already and
    // 1 when any failed. Once stop is set no file starts; those being rendered are
    // abandoned and their temporaries removed.
    int run (const std::atomic<bool>& stop);

    // Files rendered at once by default: the cores this process may run on.
    static int defaultJobs();

private:
    void checkSettings() const;
    void print (const BatchPlan::Item& item, FileRender::Outcome outcome, const FileRender& render);
    void printSummary (size_t files, bool stopped);
    void drawProgress (size_t files);
    void clearProgress();

    RenderOptions options;
    std::ostream& out;
    std::ostream& err;
    bool showProgress;
    int jobs = 1;

    std::atomic<int64_t> audioMicroseconds{0};
    double totalSeconds = 0.0;   // of every input, read from the headers before starting
    double skippedSeconds = 0.0; // of inputs whose outputs were complete already
    size_t rendered = 0, skipped = 0, failed = 0;
    std::chrono::steady_clock::time_point started;
    bool progressShown = false;
};
