#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

// One thread that builds and disposes of DSP objects for the audio thread. It runs
// one job at a time; post() waits while a job is still pending, which the audio
// thread only meets in the short moment at the end of a job.
//
// Jobs should capture little (a pointer) so that storing them does not allocate.
class HVNRebuildWorker
{
public:
    using Job = std::function<void()>;

    HVNRebuildWorker();
    // Stops the thread and joins it; a job still pending is not run.
    ~HVNRebuildWorker();

    HVNRebuildWorker (const HVNRebuildWorker&) = delete;
    HVNRebuildWorker& operator= (const HVNRebuildWorker&) = delete;

    void post (Job job);
    // Returns once no job is pending or running.
    void waitUntilIdle();

private:
    void run();

    std::mutex mutex;
    std::condition_variable condition;
    Job job;
    bool jobPending = false;
    bool stopRequested = false;
    std::thread thread;
};
