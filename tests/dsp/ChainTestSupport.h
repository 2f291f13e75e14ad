#pragma once

#include "dsp/HVNParameterIndex.h"
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

// The chain's gain staging around its compressor, without the lo-fi stages and
// the wow, whose colour (crunch make-up, analog response, noise) would otherwise
// stand in every measurement of the compressor's own law. Same interface as
// ChainRunner; the HVNZC1DSP only owns the parameters, easings and compressor.
struct CompressorRunner : ChainRunner
{
    CompressorRunner (uint32_t maxBlock, double rate, uint32_t ins = 2, uint32_t outs = 2,
                      uint32_t sidechains = 0)
        : ChainRunner (maxBlock, rate, ins, outs, sidechains)
        , main (outs, maxBlock)
        , detect (outs, maxBlock)
    {
    }

    std::vector<std::vector<float>> run (long length, const std::function<float (uint32_t, long)>& input,
                                         const std::function<uint32_t()>& nextBlock = {},
                                         const std::function<float (uint32_t, long)>& sidechain = {})
    {
        using namespace HVNParameterIndex;
        std::vector<std::vector<float>> result (out.channels(), std::vector<float> (length));
        for (long t = 0; t < length;)
        {
            uint32_t n = nextBlock ? nextBlock() : dsp.blockSize;
            n = static_cast<uint32_t> (
                std::min<long> ({static_cast<long> (n), length - t, static_cast<long> (dsp.blockSize)}));
            for (uint32_t c = 0; c < in.channels(); ++c)
                for (uint32_t i = 0; i < n; ++i)
                    in.channel (c)[i] = input (c, t + i);
            for (uint32_t c = 0; c < side.channels(); ++c)
                for (uint32_t i = 0; i < n; ++i)
                    side.channel (c)[i] = sidechain ? sidechain (c, t + i) : 0.0f;

            auto& d = dsp;
            if (d.parameterChanged (MasterMix))
                d.mixEase.setTarget (d.parameterValue (MasterMix) * 0.01);
            if (d.parameterChanged (InputGain))
                d.inputGainEase.setTarget (d.parameterValue (InputGain));
            if (d.parameterChanged (OutputGain))
                d.outputGainEase.setTarget (d.parameterValue (OutputGain));
            if (d.parameterChanged (DigitalRefLevel))
                d.refGainEase.setTarget (-18.0 - d.parameterValue (DigitalRefLevel));
            d.mixEase.process (n);
            main.convertFrom (in, n);
            const bool external = sidechain != nullptr && side.channels() > 0;
            state.update (external);
            if (external)
                detect.convertFrom (side, n);
            d.inputGainEase.process (n);
            d.inputGainEase.multiply (main, n);
            d.refGainEase.process (n);
            d.refGainEase.multiply (main, n);
            if (external)
                d.refGainEase.multiply (detect, n);
            d.getCompressor().process (main, detect, state, n);
            d.outputGainEase.process (n);
            d.outputGainEase.multiply (main, n);
            d.refGainEase.divide (main, n);
            out.convertFrom (main, n);

            for (auto& p : d.parameters)
                p.changed = false;
            for (uint32_t c = 0; c < out.channels(); ++c)
                for (uint32_t i = 0; i < n; ++i)
                    result[c][t + i] = out.channel (c)[i];
            t += n;
        }
        return result;
    }

    HVNAudioBuffer<double> main, detect;
    HVNSidechainState state;
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
