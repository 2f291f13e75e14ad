#pragma once

#include "state/TRQSignals.h"

#include <cstdint>
#include <memory>
#include <vector>

class HVNSketch;
class HVNLevelMeter;
class HVNLEDMeter;
class HVNGRHistory;
class MeterMessaging;
class TRQShapeRenderer;

// The compressor's meters: input and output bars, the detector LED and the
// gain-reduction history, fed by the DSP's meter channel. Made, used and destroyed
// on the GL thread; a new one is made whenever the channel or its format changes.
class HVNZC1TRQSketch : public TRQSignals::Trackable
{
public:
    HVNZC1TRQSketch (MeterMessaging& messaging, uint32_t numInputs, uint32_t numOutputs, uint32_t blockSize);
    ~HVNZC1TRQSketch() override;

    // metering 1 draws everything; other values leave out the optional elements.
    void setMetering (int metering);
    void setAdvancedPaneOpen (bool open);
    void setDarkMode (bool on);
    void reset();

    // Advances every drawn element by seconds and draws it.
    void updateAndRender (float seconds, double now, TRQShapeRenderer& renderer);

    HVNLevelMeter& inputMeter() { return *input; }
    HVNLevelMeter& outputMeter() { return *output; }
    HVNLEDMeter& ledMeter() { return *led; }
    HVNGRHistory& history() { return *grHistory; }

private:
    bool isDrawn (const HVNSketch& element) const;

    std::shared_ptr<HVNGRHistory> grHistory;
    std::shared_ptr<HVNLevelMeter> input, output;
    std::shared_ptr<HVNLEDMeter> led;
    std::vector<HVNSketch*> elements; // drawing order
    int metering = 1;
    bool advancedOpen = false;
    double lastNow = 0.0;
};
