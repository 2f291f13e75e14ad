#include "meters/HVNZC1TRQSketch.h"

#include "meters/HVNGRHistory.h"
#include "meters/HVNLEDMeter.h"
#include "meters/HVNLevelMeter.h"
#include "meters/MeterMessaging.h"
#include "meters/SharedMeterTypes.h"

#include <juce_core/juce_core.h>

HVNZC1TRQSketch::HVNZC1TRQSketch (MeterMessaging& messaging, uint32_t numInputs, uint32_t numOutputs,
                                  uint32_t blockSize)
    : grHistory (std::make_shared<HVNGRHistory> (2, -32.0f))
    , input (std::make_shared<HVNLevelMeter> (0, -60.0f, 0.0f))
    , output (std::make_shared<HVNLevelMeter> (1, -60.0f, 0.0f))
    , led (std::make_shared<HVNLEDMeter> (3, -60.0f, 0.0f))
{
    elements = {grHistory.get(), input.get(), output.get(), led.get()};
    input->barThickness = output->barThickness = 4.0f;

    using Buffer = SharedMeterTypes::HVNAudioBufferMeter<double>;
    std::weak_ptr<HVNLevelMeter> in = input, out = output;
    std::weak_ptr<HVNLEDMeter> lamp = led;
    std::weak_ptr<HVNGRHistory> gr = grHistory;
    // The listeners hold weak references: the channel outlives the sketch when the
    // editor closes while audio runs, and clear() drops them before that.
    messaging.addStore (MeterMessaging::inputLevelId, Buffer (numInputs, blockSize),
                        [in] (const MeterData& d)
                        {
                            if (auto m = in.lock())
                                m->setLevelFromBuffer (d);
                        });
    messaging.addStore (MeterMessaging::outputLevelId, Buffer (numOutputs, blockSize),
                        [out] (const MeterData& d)
                        {
                            if (auto m = out.lock())
                                m->setLevelFromBuffer (d);
                        });
    messaging.addStore (MeterMessaging::detectorId, Buffer (numInputs, blockSize),
                        [lamp] (const MeterData& d)
                        {
                            if (auto m = lamp.lock())
                                m->setLevelFromBuffer (d);
                        });
    messaging.addStore (MeterMessaging::gainReductionId, SharedMeterTypes::DataPoint<float>(),
                        [gr] (const MeterData& d)
                        {
                            if (auto m = gr.lock())
                                m->setValue (d, true, juce::Time::getMillisecondCounterHiRes() / 1000.0);
                        });
}

HVNZC1TRQSketch::~HVNZC1TRQSketch() = default;

void HVNZC1TRQSketch::setMetering (int value)
{
    if (value == 1 && metering != 1)
        reset();
    metering = value;
}

void HVNZC1TRQSketch::setAdvancedPaneOpen (bool open)
{
    advancedOpen = open;
}

void HVNZC1TRQSketch::setDarkMode (bool on)
{
    for (auto* e : elements)
        e->setDarkMode (on);
}

void HVNZC1TRQSketch::reset()
{
    for (auto* e : elements)
        e->reset();
}

bool HVNZC1TRQSketch::isDrawn (const HVNSketch& element) const
{
    if (metering != 1 && element.getRow().optional)
        return false;
    if (element.getRow().advancedPane && !advancedOpen)
        return false;
    return true;
}

void HVNZC1TRQSketch::updateAndRender (float seconds, double now, TRQShapeRenderer& renderer)
{
    lastNow = now;
    for (auto* e : elements)
        if (isDrawn (*e))
        {
            e->update (seconds, now);
            e->render (renderer);
        }
}
