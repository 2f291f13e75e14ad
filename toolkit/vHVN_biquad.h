#pragma once

#include "toolkit/HVNArray.h"

#include <array>
#include <cstdint>
#include <vector>

// Recursive filters of the signal path: second-order sections in transposed
// direct form II, six coefficients per section (b0, b1, b2, 1.0, a1, a2) so that
// one array serves every processing route, and a designer of the filter types
// the product uses. Design arithmetic is always in doubles.
namespace vHVN_biquad
{
enum HVNFilterType : uint32_t
{
    ButterworthLowpass = 0,
    ButterworthHighpass = 1,
    LinkwitzRileyLowpass = 2,
    LinkwitzRileyHighpass = 3,
    LowShelf = 4,
    HighShelf = 5,
    Peak = 6,
    Bandpass = 7,
    FirstOrderAllpass = 8,
    Gain = 9,
    Lowpass = 10,
    Highpass = 11,
    Notch = 12
};

// b0, b1, b2, a0, a1, a2, not yet divided by a0.
using RawSection = std::array<double, 6>;
using RawSections = std::vector<RawSection>;

// Fills sections from the start (growing the vector only when it is too short,
// so callers that size it up front never allocate) and returns the count; 0 for
// an unknown type.
uint32_t designFilterSections (RawSections& sections, double sampleRate, double frequency, double gainDb,
                               double q, double order, uint32_t type);

template<typename T>
class Biquad
{
public:
    explicit Biquad (uint32_t maxSections);
    virtual ~Biquad() = default;

    Biquad (const Biquad&) = default;
    Biquad& operator= (const Biquad&) = default;

    virtual void reset();
    virtual void copyDelaysFrom (const Biquad& other);
    // 2 values per section in use; 2 * maxSections zeros when none is.
    virtual void getDelays (T* destination) const;
    // In place.
    virtual void process (T* samples, uint32_t n);
    // 5 values per section, b0 b1 b2 a1 a2, already divided by a0. The memory of
    // the sections that stay in use is kept; sections dropped or added start clean.
    virtual void setCoefficients (uint32_t count, const T* values);

    T processOne (T sample);
    void processEight (T* samples);

    uint32_t getMaxSections() const { return maxSections; }
    uint32_t getSections() const { return sections; }
    const T* getCoefficients() const { return coefficients.data(); }

protected:
    uint32_t maxSections;
    uint32_t sections = 0;
    HVNArray<T> coefficients;
    HVNArray<T> delays;
};

// The block form used by the chains: a filter without sections is an exact
// pass-through and costs nothing; assignment carries coefficients and memory.
template<typename T>
class Vectorized : public Biquad<T>
{
public:
    explicit Vectorized (uint32_t maxSections);

    Vectorized (const Vectorized&) = default;
    // Copies coefficients, section count and memory; reallocates only when the
    // capacities differ.
    Vectorized& operator= (const Vectorized& other);

    void process (T* samples, uint32_t n) override;
};

extern template class Biquad<double>;
extern template class Vectorized<double>;
} // namespace vHVN_biquad
