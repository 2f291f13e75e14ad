#pragma once

// Base of the records that travel from the audio thread to the meters.
class MeterData
{
public:
    virtual ~MeterData() = default;
};
