#pragma once

#include "dsp/HVNZC1DSP.h"

#include <cmath>
#include <functional>
#include <initializer_list>
#include <utility>
#include <vector>

// Runs an HVNZC1DSP over whole signals in blocks of chosen sizes, delivering
// parameters as the host does (changed flags raised for one block).
struct ChainRunner
{
    ChainRunner (uint32_t maxBlock, double rate, uint32_t ins = 2, uint32_t outs = 2, uint32_t sidechains = 0,
                 uint32_t factor = 0)
        : dsp (maxBlock, rate, ins, outs, sidechains, factor)
        , in (ins, maxBlock)
        , out (outs, maxBlock)
        , side (sidechains, maxBlock)
    {
    }

    void set (uint32_t index, float value)
    {
        dsp.parameters[index].value = value;
        dsp.parameters[index].changed = true;
    }
    void set (std::initializer_list<std::pair<uint32_t, float>> values)
    {
        for (const auto& v : values)
            set (v.first, v.second);
    }

    // input(channel, t) and sidechain(channel, t) give the samples; the result is
    // the output, channel by channel. nextBlock gives each block's length.
    std::vector<std::vector<float>> run (long length, const std::function<float (uint32_t, long)>& input,
                                         const std::function<uint32_t()>& nextBlock = {},
                                         const std::function<float (uint32_t, long)>& sidechain = {},
                                         const std::function<void (long)>& beforeBlock = {})
    {
        std::vector<std::vector<float>> result (out.channels(), std::vector<float> (length));
        for (long t = 0; t < length;)
        {
            uint32_t n = nextBlock ? nextBlock() : dsp.blockSize;
            n = static_cast<uint32_t> (
                std::min<long> ({static_cast<long> (n), length - t, static_cast<long> (dsp.blockSize)}));
            if (beforeBlock)
                beforeBlock (t);
            for (uint32_t c = 0; c < in.channels(); ++c)
                for (uint32_t i = 0; i < n; ++i)
                    in.channel (c)[i] = input (c, t + i);
            for (uint32_t c = 0; c < side.channels(); ++c)
                for (uint32_t i = 0; i < n; ++i)
                    side.channel (c)[i] = sidechain ? sidechain (c, t + i) : 0.0f;
            dsp.process (in, out, side, n, sidechain != nullptr);
            for (auto& p : dsp.parameters)
                p.changed = false;
            for (uint32_t c = 0; c < out.channels(); ++c)
                for (uint32_t i = 0; i < n; ++i)
                    result[c][t + i] = out.channel (c)[i];
            t += n;
            if (afterBlock)
                afterBlock();
        }
        return result;
    }

    static std::function<float (uint32_t, long)> sine (double frequency, double amplitude, double rate)
    {
        return [=] (uint32_t, long t)
        { return static_cast<float> (amplitude * std::sin (2.0 * 3.14159265358979 * frequency * t / rate)); };
    }

    HVNZC1DSP dsp;
    HVNAudioBuffer<float> in, out, side;
    std::function<void()> afterBlock;
};

inline double toDb (double x)
{
    return 20.0 * std::log10 (x);
}

// RMS of channel c of a rendered signal over [from, to).
inline double rmsOf (const std::vector<float>& x, long from, long to)
{
    double s = 0.0;
    for (long i = from; i < to; ++i)
        s += static_cast<double> (x[i]) * x[i];
    return std::sqrt (s / static_cast<double> (to - from));
}
