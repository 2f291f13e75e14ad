#pragma once

#include <cstdint>

// Flush-to-zero and denormals-are-zero for the lifetime of a scope, on the
// calling thread. Recursive filters decay into denormals on silence, and those
// cost a hundred times a normal operation, so every processing entry point
// opens one of these. The register is written only if it has to change, and
// the saved word is put back at the end.
class HVNFPGuard
{
public:
    HVNFPGuard();
    ~HVNFPGuard();

    HVNFPGuard (const HVNFPGuard&) = delete;
    HVNFPGuard& operator= (const HVNFPGuard&) = delete;

    static constexpr uint32_t flushBits = 0x8040u;

private:
    uint32_t saved;
    bool changed;
};
