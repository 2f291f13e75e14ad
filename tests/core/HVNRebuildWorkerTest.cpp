#include "core/HVNRebuildWorker.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

TEST (HVNRebuildWorker, RunsJobsInTurnOnItsOwnThread)
{
    HVNRebuildWorker worker;
    std::atomic<int> order{0};
    std::thread::id ran;
    worker.post (
        [&]
        {
            std::this_thread::sleep_for (std::chrono::milliseconds (30));
            ran = std::this_thread::get_id();
            order = order * 10 + 1;
        });
    worker.post ([&] { order = order * 10 + 2; }); // waits for the first
    worker.waitUntilIdle();
    EXPECT_EQ (order, 12);
    EXPECT_NE (ran, std::this_thread::get_id());
}

TEST (HVNRebuildWorker, DestructionJoinsARunningJob)
{
    std::atomic<bool> finished{false};
    {
        HVNRebuildWorker worker;
        worker.post (
            [&]
            {
                std::this_thread::sleep_for (std::chrono::milliseconds (30));
                finished = true;
            });
        std::this_thread::sleep_for (std::chrono::milliseconds (5));
    }
    EXPECT_TRUE (finished);
}
