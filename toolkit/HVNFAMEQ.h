#pragma once

#include "toolkit/HVNArray.h"
#include "toolkit/HVNAudioBuffer.h"
#include "toolkit/HVNCircularBuffer.h"
#include "toolkit/HVNDirectFIR.h"
#include "toolkit/HVNEasingFloat.h"
#include "toolkit/HVNImpulse.h"
#include "toolkit/HVNMagnitudeDesigner.h"
#include "toolkit/HVNPartitionedConvolver.h"

#include <cstdint>
#include <memory>

// An equaliser of arbitrary magnitude response, given in decibels per bin or on
// any frequency grid, run as an FIR of fixed length.
template<typename D>
class HVNFAMEQBase
{
public:
    virtual void init (uint32_t maxBlock, D sampleRate, uint32_t channels, uint32_t filterLength,
                       bool linearPhase, D windowParameter) = 0;
    virtual ~HVNFAMEQBase() = default;
    virtual void reset() = 0;
    virtual void setTransitionTime (D milliseconds) = 0;
    // filterLength / 2
    virtual uint32_t getBinCount() const = 0;
    // getBinCount() values in Hz: i * sampleRate / filterLength.
    virtual void getFrequencies (D* out) const = 0;
    virtual void setMagnitudes (const D* decibels) = 0;
    // A response on any increasing frequency grid, interpolated in log frequency.
    virtual void setResponse (const D* frequencies, const D* decibels, uint32_t count) = 0;
    virtual void process (HVNAudioBuffer<D>& block, uint32_t n) = 0;
    virtual void processFloat (HVNAudioBuffer<float>& block, uint32_t n) = 0;
};

// Audio is filtered in A, designs and the interface work in D. A new response is
// designed at the head of the next block (or, during a crossfade, once the fade
// is over: only the latest one) and faded in over 75 ms with square-root gains
// before and after the two filters, so each filter's tail rings out untouched.
//
// init allocates; everything after it is real-time safe. Audio thread only.
template<typename A, typename D>
class HVNFAMEQ : public HVNFAMEQBase<D>
{
public:
    HVNFAMEQ() = default;

    void init (uint32_t maxBlock, D sampleRate, uint32_t channels, uint32_t filterLength, bool linearPhase,
               D windowParameter) override;
    void reset() override;
    void setTransitionTime (D milliseconds) override;
    uint32_t getBinCount() const override { return binCount; }
    void getFrequencies (D* out) const override;
    void setMagnitudes (const D* decibels) override;
    void setResponse (const D* frequencies, const D* decibels, uint32_t count) override;
    void process (HVNAudioBuffer<D>& block, uint32_t n) override;
    void processFloat (HVNAudioBuffer<float>& block, uint32_t n) override;

    // The filter that the next block will load (or loaded last).
    const HVNImpulse& getPendingImpulse() const { return *pending; }
    const HVNArray<D>& getWindow() const { return window; }
    // How many times the FFT designer has run.
    uint32_t getDesignCount() const { return designCount; }
    bool isFading() const { return fading; }
    bool isDirect() const { return direct; }
    uint32_t getFilterLength() const { return filterLength; }

private:
    void design();
    void runPending (bool allowFade);
    void runFilter (bool first, HVNAudioBuffer<float>& block, uint32_t n);
    void load (bool first);
    void clearFilters();
    void makeWindow (D beta);

    D sampleRate = 0;
    uint32_t channels = 0, filterLength = 0, binCount = 0, maxBlock = 0;
    std::unique_ptr<HVNEasingFloat<float>> crossfade;
    std::unique_ptr<HVNPartitionedConvolver> convolvers[2];
    std::unique_ptr<HVNDirectFIR> directs[2];
    std::unique_ptr<HVNImpulse> pending;
    HVNAudioBuffer<float> conversion, fadeBlock;
    HVNArray<float> newGain, oldGain;
    HVNArray<D> magnitudes, designInput, impulse, window;
    HVNArray<float> impulseFloat;
    std::unique_ptr<HVNMagnitudeDesigner> designer;
    std::unique_ptr<HVNCircularBuffer<float>> rampDelay;
    uint32_t tailCount = 0;
    uint32_t designCount = 0;
    bool needsDesign = false, hasNewFilter = false, fading = false, firstIsLive = true, linearPhase = false,
         firstBlock = true, direct = false;
};

extern template class HVNFAMEQ<float, double>;
