#pragma once

#include <juce_core/juce_core.h>

// Block sizes between 1 and the maximum, the same sequence on every run.
class BlockSizer
{
public:
    BlockSizer (int maximum, bool random)
        : maximum (maximum)
        , random (random)
    {
    }

    int next() { return random ? 1 + generator.nextInt (maximum) : maximum; }

private:
    int maximum;
    bool random;
    juce::Random generator{12345};
};
