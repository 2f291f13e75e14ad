// Hammers one meter channel from a writer and a reader thread, and an HQ swap loop
// against the rebuild worker, for ThreadSanitizer. Not part of the normal build.
#include "core/HVNPublicDSP.h"
#include "meters/MeterMessaging.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace
{
using BufferMeter = SharedMeterTypes::HVNAudioBufferMeter<double>;
using Point = SharedMeterTypes::DataPoint<float>;

int stressMeters (int blocks)
{
    MeterMessaging messaging (46);
    std::atomic<bool> done{false};
    std::atomic<int> torn{0}, outOfOrder{0};
    double lastSeen = -1.0;

    auto listener = [&] (const MeterData& d)
    {
        const auto& m = static_cast<const BufferMeter&> (d);
        const double first = m.buffer->channel (0)[0];
        for (uint32_t c = 0; c < m.buffer->channels(); ++c)
            for (uint32_t i = 0; i < m.frames; ++i)
                if (m.buffer->channel (c)[i] != first)
                    ++torn;
        if (first <= lastSeen)
            ++outOfOrder;
        lastSeen = first;
    };
    messaging.addStore (MeterMessaging::inputLevelId, BufferMeter (2, 64), listener);
    messaging.addStore (MeterMessaging::gainReductionId, Point(), [] (const MeterData&) {});

    std::thread writer (
        [&]
        {
            HVNAudioBuffer<double> block (2, 64);
            for (int b = 0; b < blocks; ++b)
            {
                for (uint32_t c = 0; c < 2; ++c)
                    for (uint32_t i = 0; i < 64; ++i)
                        block.channel (c)[i] = b;
                messaging.writeBuffer (MeterMessaging::inputLevelId, block, 64);
                messaging.writePoint (static_cast<float> (b));
            }
            done = true;
        });

    std::thread reader (
        [&]
        {
            int rounds = 0;
            while (!done)
            {
                messaging.poll();
                if (++rounds % 5000 == 0)
                {
                    // The editor closing and opening again.
                    messaging.clear();
                    messaging.addStore (MeterMessaging::inputLevelId, BufferMeter (2, 64), listener);
                }
            }
            messaging.poll();
        });

    writer.join();
    reader.join();
    std::printf ("meters: %d torn records, %d out of order\n", torn.load(), outOfOrder.load());
    return torn == 0 && outOfOrder == 0 ? 0 : 1;
}

int stressSwaps (int blocks)
{
    HVNPublicDSP dsp (64, 44100.0, 2, 2, 0, false);
    HVNAudioBuffer<float> in (2, 64), out (2, 64), sidechain (0);
    int swaps = 0;
    struct Counter : TRQSignals::Trackable
    {
        int* n;
        void onSwap() { ++*n; }
    } counter;
    counter.n = &swaps;
    dsp.dspSwapped.connect (&Counter::onSwap, &counter);

    for (int b = 0; b < blocks; ++b)
    {
        dsp.setParameter (16, (b / 40) % 2 == 0 ? 0.0f : 1.0f, false);
        dsp.process (in, out, sidechain, 64, false);
    }
    dsp.reset();
    std::printf ("swaps: %d\n", swaps);
    return 0;
}
} // namespace

int main (int argc, char** argv)
{
    const int blocks = argc > 1 ? std::atoi (argv[1]) : 200000;
    return stressMeters (blocks) | stressSwaps (blocks / 20);
}
