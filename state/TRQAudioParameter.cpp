#include "state/TRQAudioParameter.h"

#include "state/ParameterCatalogue.h"
#include "state/ParameterRange.h"
#include "state/TRQParameterText.h"

#include <algorithm>
#include <cmath>

namespace
{
// Automation and sessions are keyed on this version hint: never change it.
constexpr int parameterVersionHint = 1;

// The decimal index, optionally behind an underscore: LV2 needs parameter names
// that don't start with a digit.
ParameterId idFromText (const juce::String& parameterId)
{
    const int value = parameterId.trimCharactersAtStart ("_").getIntValue();
    return value < 0 ? kNumParameters : static_cast<ParameterId> (value);
}
} // namespace

TRQAudioParameter::TRQAudioParameter (const juce::String& parameterId, const juce::String& name,
                                      const juce::String& label, float factoryDefault_, float startValue)
    : juce::AudioProcessorParameterWithID (juce::ParameterID{parameterId, parameterVersionHint}, name,
                                           juce::AudioProcessorParameterWithIDAttributes().withLabel (label))
    , id (idFromText (parameterId))
    , factoryDefault (factoryDefault_)
    , numSteps (hostStepCount (ParameterCatalogue::row (id).numSteps))
    , discrete (ParameterCatalogue::row (id).discrete)
    , presetDefault (startValue)
    , linkManager (std::make_unique<TRQLinkManager>())
    , realValue (startValue)
{
}

TRQAudioParameter::~TRQAudioParameter() = default;

float TRQAudioParameter::getValue() const
{
    return toNormalised (id, realValue.load());
}

void TRQAudioParameter::setValue (float normalised)
{
    if (!isAutomatable())
        return;
    const float real = fromNormalised (id, normalised);
    const float oldReal = realValue.exchange (real);
    // The flag follows the value: the DSP reads the value once it sees the flag.
    markChanged();
    linkManager->valueChanged (normalised, oldReal);
}

float TRQAudioParameter::getDefaultValue() const
{
    // Always the factory default: the host's reset must not depend on the user's
    // choice of default preset.
    return std::clamp (toNormalised (id, factoryDefault), 0.0f, 1.0f);
}

int TRQAudioParameter::getNumSteps() const
{
    return numSteps;
}

bool TRQAudioParameter::isDiscrete() const
{
    return discrete;
}

bool TRQAudioParameter::isBoolean() const
{
    return false;
}

juce::String TRQAudioParameter::getText (float normalised, int) const
{
    float real = fromNormalised (id, normalised);
    if (real == 0.0f)
        real = 0.0f; // a snapped -0 would read "-0.0"
    return valueToText (*this, real, false) + " " + unitText (*this, real);
}

float TRQAudioParameter::getValueForText (const juce::String& text) const
{
    return toNormalised (id, text.getFloatValue());
}

bool TRQAudioParameter::isOrientationInverted() const
{
    return false;
}

bool TRQAudioParameter::isAutomatable() const
{
    return automatable.load() && linkManager->isAutomatable();
}

bool TRQAudioParameter::isMetaParameter() const
{
    return false;
}

void TRQAudioParameter::storeRealValue (float real) noexcept
{
    realValue.store (snapAndClamp (id, real));
    markChanged();
}

void TRQAudioParameter::setLinkManager (std::unique_ptr<TRQLinkManager> manager)
{
    if (manager != nullptr)
        linkManager = std::move (manager);
}
