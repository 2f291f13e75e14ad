#pragma once

#include "toolkit/HVNAudioBuffer.h"
#include "toolkit/HVNEasingFloat.h"

#include <cstdint>

// The tape-like soft clipper after the compressor: transparent up to about
// three quarters of full scale, then bending smoothly into a ceiling a little
// above it. It holds no state.
namespace HVNShaper
{
// The curve for a block of samples.
void shape (const double* in, double* out, uint32_t n);

// Each channel shaped into scratch (n samples), then crossfaded by mix against
// the channel's own input.
void process (HVNAudioBuffer<double>& block, uint32_t n, const HVNEasingFloat<double>& mix, double* scratch);
} // namespace HVNShaper
