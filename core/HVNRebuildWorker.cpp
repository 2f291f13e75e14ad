#include "core/HVNRebuildWorker.h"

HVNRebuildWorker::HVNRebuildWorker()
    : thread ([this] { run(); })
{
}

HVNRebuildWorker::~HVNRebuildWorker()
{
    {
        std::lock_guard<std::mutex> lock (mutex);
        stopRequested = true;
    }
    condition.notify_all();
    if (thread.joinable())
        thread.join();
}

void HVNRebuildWorker::run()
{
    std::unique_lock<std::mutex> lock (mutex);
    for (;;)
    {
        condition.wait (lock, [this] { return jobPending || stopRequested; });
        if (stopRequested)
            break;

        // The job runs unlocked, so that a waiting poster is not held on the mutex
        // for the length of a build.
        lock.unlock();
        job();
        lock.lock();

        jobPending = false;
        condition.notify_all();
    }
    jobPending = false;
    condition.notify_all();
}

void HVNRebuildWorker::post (Job newJob)
{
    {
        std::unique_lock<std::mutex> lock (mutex);
        condition.wait (lock, [this] { return !jobPending || stopRequested; });
        if (stopRequested)
            return;
        job = std::move (newJob);
        jobPending = true;
    }
    condition.notify_all();
}

void HVNRebuildWorker::waitUntilIdle()
{
    std::unique_lock<std::mutex> lock (mutex);
    condition.wait (lock, [this] { return !jobPending; });
}
