#include "state/TRQAudioParameter.h"
#include "state/ParameterCatalogue.h"
#include "state/ParameterRange.h"
#include "state/TRQParameterText.h"
#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace
{
std::unique_ptr<TRQAudioParameter> makeParameter (ParameterId id, float startValue)
{
    const ParameterSpec& row = ParameterCatalogue::row (id);
    return std::make_unique<TRQAudioParameter> (juce::String (id), juce::String (row.name), juce::String(),
                                                row.defaultValue, startValue);
}

std::unique_ptr<TRQAudioParameter> makeParameter (ParameterId id)
{
    return makeParameter (id, ParameterCatalogue::row (id).defaultValue);
}

struct Call
{
    float newNormalised;
    float oldReal;
    float realSeen;
    bool flagSeen;
};

// Records what the parameter hands over, and what state it is in at that moment.
class RecordingLinkManager : public TRQLinkManager
{
public:
    RecordingLinkManager (TRQAudioParameter& owner, std::vector<Call>& calls, bool automatable = true)
        : owner (owner)
        , calls (calls)
        , automatable (automatable)
    {
        calls.reserve (8);
    }

    bool isAutomatable() const override { return automatable; }

    void valueChanged (float newNormalised, float oldReal) override
    {
        float ignored = 0.0f;
        const bool flag = owner.getIfChanged (ignored);
        calls.push_back ({newNormalised, oldReal, owner.getRealValue(), flag});
    }

private:
    TRQAudioParameter& owner;
    std::vector<Call>& calls;
    bool automatable;
};
} // namespace

TEST (TRQAudioParameter, TakesItsShapeFromTheCatalogue)
{
    auto attack = makeParameter (7);
    EXPECT_EQ (attack->getId(), 7u);
    EXPECT_EQ (attack->getParameterID(), "7");
    EXPECT_EQ (attack->getVersionHint(), 1);
    EXPECT_EQ (attack->getName (100), "Comp Attack Time Constant");
    EXPECT_EQ (attack->getNumSteps(), 80);
    EXPECT_FALSE (attack->isDiscrete());
    EXPECT_FALSE (attack->isBoolean());
    EXPECT_TRUE (attack->isAutomatable());

    auto power = makeParameter (0);
    EXPECT_EQ (power->getNumSteps(), 2);
    EXPECT_TRUE (power->isDiscrete());
    EXPECT_FALSE (power->isBoolean());

    EXPECT_THROW (makeParameter (kNumParameters, 0.0f), std::out_of_range);
}

TEST (TRQAudioParameter, HostDefaultIsAlwaysTheFactoryDefault)
{
    auto amount = makeParameter (2, 80.0f);
    EXPECT_EQ (amount->getRealValue(), 80.0f);
    EXPECT_EQ (amount->getPresetDefault(), 80.0f);
    amount->setPresetDefault (20.0f);
    EXPECT_EQ (amount->getDefaultValue(), 0.5f);
    EXPECT_FLOAT_EQ (amount->getValue(), 0.8f);
}

TEST (TRQAudioParameter, HostChangeIsSnappedFlaggedAndPassedOn)
{
    auto gain = makeParameter (1);
    std::vector<Call> calls;
    gain->setLinkManager (std::make_unique<RecordingLinkManager> (*gain, calls));

    float out = -1.0f;
    EXPECT_FALSE (gain->getIfChanged (out));

    const float n = toNormalised (1, -6.04f);
    gain->setValue (n);
    EXPECT_FLOAT_EQ (gain->getRealValue(), -6.0f);

    ASSERT_EQ (calls.size(), 1u);
    EXPECT_EQ (calls[0].newNormalised, n);
    EXPECT_EQ (calls[0].oldReal, 0.0f);
    EXPECT_FLOAT_EQ (calls[0].realSeen, -6.0f) << "value stored before the link manager hears";
    EXPECT_TRUE (calls[0].flagSeen) << "flag raised before the link manager hears";

    gain->setValue (toNormalised (1, 3.0f));
    ASSERT_EQ (calls.size(), 2u);
    EXPECT_FLOAT_EQ (calls[1].oldReal, -6.0f);

    // The recorder took the flag; with the plain manager it waits for the DSP.
    gain->setLinkManager (std::make_unique<TRQLinkManager>());
    gain->setValue (toNormalised (1, 4.0f));
    ASSERT_TRUE (gain->getIfChanged (out));
    EXPECT_EQ (out, gain->getValue());
    EXPECT_FALSE (gain->getIfChanged (out)) << "taking the flag clears it";
}

TEST (TRQAudioParameter, HostChangeIsDroppedWhileNotAutomatable)
{
    auto mix = makeParameter (6);
    std::vector<Call> calls;
    mix->setLinkManager (std::make_unique<RecordingLinkManager> (*mix, calls));
    mix->setAutomatable (false);
    mix->setValue (0.25f);
    float out = 0.0f;
    EXPECT_FALSE (mix->getIfChanged (out));
    EXPECT_EQ (mix->getValue(), 1.0f);
    EXPECT_TRUE (calls.empty());

    // A link that locks the parameter has the same effect.
    mix->setAutomatable (true);
    mix->setLinkManager (std::make_unique<RecordingLinkManager> (*mix, calls, false));
    EXPECT_FALSE (mix->isAutomatable());
    mix->setValue (0.25f);
    EXPECT_EQ (mix->getRealValue(), 100.0f);
    EXPECT_TRUE (calls.empty());
}

TEST (TRQAudioParameter, QuietStoreSkipsTheLinkManager)
{
    auto link = makeParameter (9);
    std::vector<Call> calls;
    link->setLinkManager (std::make_unique<RecordingLinkManager> (*link, calls));
    link->storeRealValue (0.2f);
    EXPECT_EQ (link->getRealValue(), 0.0f);
    float out = -1.0f;
    EXPECT_TRUE (link->getIfChanged (out));
    EXPECT_EQ (out, 0.0f);
    EXPECT_TRUE (calls.empty());
}

TEST (TRQAudioParameter, SetValueNeverAllocates)
{
    auto tilt = makeParameter (20);
    AllocationCounter counter;
    for (int i = 0; i <= 100; ++i)
        tilt->setValue (static_cast<float> (i) / 100.0f);
    float out = 0.0f;
    const bool changed = tilt->getIfChanged (out);
    EXPECT_EQ (counter.allocations(), 0u);
    EXPECT_TRUE (changed);
    EXPECT_EQ (tilt->getRealValue(), 100.0f);
}

TEST (TRQAudioParameter, TextsAsTheHostShowsThem)
{
    auto gain = makeParameter (1);
    EXPECT_EQ (gain->getText (2.0f / 3.0f, 100), "0.0 dB");
    EXPECT_EQ (gain->getText (toNormalised (1, -0.04f), 100), "0.0 dB") << "never -0.0";
    EXPECT_EQ (gain->getText (0.0f, 100), "-24.0 dB");

    auto attack = makeParameter (7);
    EXPECT_EQ (attack->getText (0.5f, 100), "0.9 x");

    auto noise = makeParameter (13);
    EXPECT_EQ (noise->getText (toNormalised (13, -96.0f), 100), "Off ");
    EXPECT_EQ (noise->getText (1.0f, 100), "12.0 dB");

    auto external = makeParameter (19);
    EXPECT_EQ (external->getText (0.0f, 100), "Off ");
    EXPECT_EQ (external->getText (0.01f, 100), "1 %");

    auto speed = makeParameter (11);
    EXPECT_EQ (speed->getText (1.0f, 100), "78 RPM ");

    auto phase = makeParameter (12);
    EXPECT_EQ (phase->getText (0.5f, 100), juce::String::fromUTF8 ("180 \xc2\xb0"));
}

TEST (TRQAudioParameter, TypedTextReadsTheLeadingNumber)
{
    auto gain = makeParameter (1);
    EXPECT_FLOAT_EQ (gain->getValueForText ("-6 dB"), toNormalised (1, -6.0f));
    EXPECT_FLOAT_EQ (gain->getValueForText ("Off"), toNormalised (1, 0.0f));
    auto attack = makeParameter (7);
    EXPECT_FLOAT_EQ (attack->getValueForText ("2.0x"), toNormalised (7, 2.0f));
}

TEST (TRQAudioParameter, ValueScreening)
{
    auto noise = makeParameter (13);
    EXPECT_TRUE (isSpecialValue (*noise, -96.0f));
    EXPECT_TRUE (acceptsValue (*noise, -96.0f));
    EXPECT_FALSE (acceptsValue (*noise, 12.5f));

    auto level = makeParameter (17);
    EXPECT_TRUE (acceptsValue (*level, -36.0f));
    EXPECT_FALSE (acceptsValue (*level, 1.0f));
}
