#pragma once

#include <cstdint>
#include <cstring>

// exp(x) inline and without branches, for serial recursions where a library
// call would sit in the critical path and force every live value to memory.
// x = (k + d) ln(2) / 64 with k whole and |d| <= 1/2: the result is 2^(k/64),
// from a table and the exponent bits, times a degree-5 series in d. Relative
// error below 2.3e-16 (|x| + 2): the rounding of x times 64/ln 2 dominates; the
// series leaves out less than 4e-17. Arguments are clamped to [-708, 709], so
// the result is always a normal number; NaN gives exp(-708).
struct HVNFastExp
{
    // Fused, every a*b + c is one rounding: shorter and slightly more exact.
    // Only for code compiled for processors with FMA; elsewhere it would call
    // the library's fma.
    template<bool Fused = false>
    static double exp (double x)
    {
        constexpr double toUnits = 0x1.71547652b82fep+6; // 64 / ln 2
        // Adding 1.5 * 2^52 rounds to a whole number held in the low mantissa bits.
        constexpr double shift = 0x1.8p52;
        constexpr int64_t shiftBits = 0x4338000000000000;
        // (ln 2 / 64)^k / k!
        constexpr double c1 = 0x1.62e42fefa39efp-7, c2 = 0x1.ebfbdff82c58fp-15, c3 = 0x1.c6b08d704a0c0p-23,
                         c4 = 0x1.3b2ab6fba4e77p-31, c5 = 0x1.5d87fe78a6731p-40;

        x = x > -708.0 ? x : -708.0;
        x = x < 709.0 ? x : 709.0;
        double t, d;
        if constexpr (Fused)
        {
            t = __builtin_fma (x, toUnits, shift);
            d = __builtin_fma (x, toUnits, -(t - shift));
        }
        else
        {
            const double y = x * toUnits;
            t = y + shift;
            d = y - (t - shift);
        }

        int64_t k;
        std::memcpy (&k, &t, sizeof k);
        k -= shiftBits;
        const uint64_t powerBits = static_cast<uint64_t> ((k >> 6) + 1023) << 52;
        double power;
        std::memcpy (&power, &powerBits, sizeof power);
        const double scale = table[k & 63] * power;

        // Grouped by powers of d rather than nested, for a short dependency chain.
        const double d2 = d * d;
        if constexpr (Fused)
        {
            const double upper = __builtin_fma (d2, __builtin_fma (c5, d, c4), __builtin_fma (c3, d, c2));
            return __builtin_fma (scale, __builtin_fma (d2, upper, c1 * d), scale);
        }
        else
        {
            const double series = (c1 * d + d2 * (c2 + c3 * d)) + (d2 * d2) * (c4 + c5 * d);
            return scale + scale * series;
        }
    }

    // 2^(j/64), correctly rounded.
    static constexpr double table[64] = {
        0x1.0000000000000p+0, 0x1.02c9a3e778061p+0, 0x1.059b0d3158574p+0, 0x1.0874518759bc8p+0,
        0x1.0b5586cf9890fp+0, 0x1.0e3ec32d3d1a2p+0, 0x1.11301d0125b51p+0, 0x1.1429aaea92de0p+0,
        0x1.172b83c7d517bp+0, 0x1.1a35beb6fcb75p+0, 0x1.1d4873168b9aap+0, 0x1.2063b88628cd6p+0,
        0x1.2387a6e756238p+0, 0x1.26b4565e27cddp+0, 0x1.29e9df51fdee1p+0, 0x1.2d285a6e4030bp+0,
        0x1.306fe0a31b715p+0, 0x1.33c08b26416ffp+0, 0x1.371a7373aa9cbp+0, 0x1.3a7db34e59ff7p+0,
        0x1.3dea64c123422p+0, 0x1.4160a21f72e2ap+0, 0x1.44e086061892dp+0, 0x1.486a2b5c13cd0p+0,
        0x1.4bfdad5362a27p+0, 0x1.4f9b2769d2ca7p+0, 0x1.5342b569d4f82p+0, 0x1.56f4736b527dap+0,
        0x1.5ab07dd485429p+0, 0x1.5e76f15ad2148p+0, 0x1.6247eb03a5585p+0, 0x1.6623882552225p+0,
        0x1.6a09e667f3bcdp+0, 0x1.6dfb23c651a2fp+0, 0x1.71f75e8ec5f74p+0, 0x1.75feb564267c9p+0,
        0x1.7a11473eb0187p+0, 0x1.7e2f336cf4e62p+0, 0x1.82589994cce13p+0, 0x1.868d99b4492edp+0,
        0x1.8ace5422aa0dbp+0, 0x1.8f1ae99157736p+0, 0x1.93737b0cdc5e5p+0, 0x1.97d829fde4e50p+0,
        0x1.9c49182a3f090p+0, 0x1.a0c667b5de565p+0, 0x1.a5503b23e255dp+0, 0x1.a9e6b5579fdbfp+0,
        0x1.ae89f995ad3adp+0, 0x1.b33a2b84f15fbp+0, 0x1.b7f76f2fb5e47p+0, 0x1.bcc1e904bc1d2p+0,
        0x1.c199bdd85529cp+0, 0x1.c67f12e57d14bp+0, 0x1.cb720dcef9069p+0, 0x1.d072d4a07897cp+0,
        0x1.d5818dcfba487p+0, 0x1.da9e603db3285p+0, 0x1.dfc97337b9b5fp+0, 0x1.e502ee78b3ff6p+0,
        0x1.ea4afa2a490dap+0, 0x1.efa1bee615a27p+0, 0x1.f50765b6e4540p+0, 0x1.fa7c1819e90d8p+0,
    };
};
