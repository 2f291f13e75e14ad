#include "core/TRQCallbackQueue.h"
#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

namespace
{
struct Receiver
{
    std::vector<int> seen;
};
} // namespace

TEST (TRQCallbackQueue, DeliversInOrderAndRefusesWhenFull)
{
    TRQCallbackQueue<Receiver, 4> queue;
    Receiver receiver;
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE (queue.post ([i] (Receiver& r) { r.seen.push_back (i); }));
    EXPECT_FALSE (queue.post ([] (Receiver& r) { r.seen.push_back (99); })) << "one slot always stays free";

    queue.drain (receiver);
    EXPECT_EQ (receiver.seen, (std::vector<int>{0, 1, 2}));
    EXPECT_TRUE (queue.isEmpty());
}

TEST (TRQCallbackQueue, PostingAllocatesNothingAndTheConsumerReleasesCaptures)
{
    TRQCallbackQueue<Receiver> queue;
    auto shared = std::make_shared<int> (5);
    std::weak_ptr<int> watch = shared;
    {
        AllocationCounter counter;
        EXPECT_TRUE (queue.post ([held = shared] (Receiver& r) { r.seen.push_back (*held); }));
        EXPECT_EQ (counter.allocations(), 0u);
    }
    shared.reset();
    EXPECT_FALSE (watch.expired()) << "the slot still holds it";

    Receiver receiver;
    queue.drain (receiver);
    EXPECT_TRUE (watch.expired()) << "released by the consumer after running";
    EXPECT_EQ (receiver.seen, (std::vector<int>{5}));
}

TEST (TRQCallbackQueue, CarriesEveryPostAcrossThreads)
{
    TRQCallbackQueue<Receiver> queue;
    Receiver receiver;
    constexpr int count = 20000;

    std::thread producer (
        [&queue]
        {
            for (int i = 0; i < count; ++i)
                while (!queue.post ([i] (Receiver& r) { r.seen.push_back (i); }))
                    std::this_thread::yield();
        });
    while (static_cast<int> (receiver.seen.size()) < count)
        queue.drain (receiver);
    producer.join();

    for (int i = 0; i < count; ++i)
        ASSERT_EQ (receiver.seen[static_cast<size_t> (i)], i);
}
