#pragma once

#include "app/BatchPlan.h"
#include "app/RenderReport.h"

#include <atomic>
#include <cstdint>

// One file of a batch, rendered block by block with a processor of its own. The
// processor's latency is cut from the head, so that the output lines up with the
// input and is exactly as long.
class FileRender
{
public:
    enum class Outcome
    {
        rendered,
        skipped, // a complete output was there already
        failed,
        stopped
    };

    FileRender (const RenderOptions& options, const BatchPlan::Item& item);

    // Renders unless a complete output is there (and the options don't ask to
    // overwrite it). Checks the stop flag between blocks and adds the input's seconds
    // rendered to audioMicroseconds as it goes. Never throws: a problem with the file
    // is kept in getError().
    Outcome run (const std::atomic<bool>& stop, std::atomic<int64_t>& audioMicroseconds);

    const RenderReport& getReport() const { return report; }
    const juce::String& getError() const { return error; }

private:
    Outcome render (const std::atomic<bool>& stop, std::atomic<int64_t>& audioMicroseconds);

    const RenderOptions& options;
    BatchPlan::Item item;
    RenderReport report;
    juce::String error;
};
