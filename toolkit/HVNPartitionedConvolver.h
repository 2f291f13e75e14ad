#pragma once

#include "toolkit/HVNArray.h"
#include "toolkit/HVNAudioBuffer.h"
#include "toolkit/HVNCircularBuffer.h"
#include "toolkit/HVNDirectFIR.h"
#include "toolkit/HVNImpulse.h"
#include "toolkit/vHVN_FFT.h"

#include <cstdint>
#include <memory>
#include <vector>

// Zero-latency convolution of float channels with a long impulse response.
//
// The first 256 taps run directly; the rest is uniformly partitioned into
// blocks of 128, multiplied in the frequency domain (256-point transforms)
// against the spectra of past input blocks. The multiply-accumulate work of a
// block is spread over the audio calls that fill it, so a host calling with
// small blocks pays evenly rather than all at once on every 128th sample.
class HVNPartitionedConvolver
{
public:
    static constexpr uint32_t fftLength = 256;
    static constexpr uint32_t partitionLength = 128;

    HVNPartitionedConvolver (uint32_t channels, uint32_t taps);

    // Copies up to partitionCount * 128 samples; the rest of the response is 0.
    void setImpulse (const float* samples, uint32_t count);
    void setImpulse (const HVNImpulse& impulse);

    // Any n; out may be in.
    void process (const float* const* in, float* const* out, uint32_t n);
    void process (const HVNAudioBuffer<float>& in, HVNAudioBuffer<float>& out, uint32_t n);

    void clear();

    uint32_t getChannels() const { return channels; }
    uint32_t getPartitionCount() const { return partitionCount; }
    // Partitions already accumulated towards the next block's output.
    uint32_t getProgress() const { return progress; }

private:
    void processPiece (const float* const* in, float* const* out, uint32_t offset, uint32_t m);
    void accumulateUpTo (uint32_t target);
    void accumulatePartition (uint32_t p);
    void finishBlock();

    uint32_t channels;
    uint32_t partitionCount;
    uint32_t activePartitions; // partitions that hold non-zero taps
    HVNDirectFIR head;
    vHVN_FFT::FFTData<0, float> fft;
    // Spectra of the impulse's partitions, the last partition first.
    HVNArray<float> impulseRe, impulseIm;
    HVNAudioBuffer<float> accumulatorRe, accumulatorIm;
    // Per channel: spectra of past input blocks, real part in lane 0, imaginary in 1.
    std::vector<std::unique_ptr<HVNCircularBuffer<float>>> spectra;
    // Per channel: the previous and the current input block, 256 samples.
    HVNAudioBuffer<float> inputs;
    // Per channel: the transform part of the current output block.
    HVNAudioBuffer<float> outputs;
    HVNArray<float> scratch, headOut;
    uint32_t inputFill = 0;
    uint32_t progress = 0;
    bool pending = false;
};
