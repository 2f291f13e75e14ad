#include "editor/TRQParameterGestures.h"

#include "core/TRQAudioProcessor.h"
#include "presets/TRQPresetController.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"
#include "state/TRQParameterManager.h"

TRQParameterGestures::TRQParameterGestures (TRQAudioProcessor& p)
    : processor (p)
{
}

TRQParameterGestures::~TRQParameterGestures() = default;

void TRQParameterGestures::begin (int index)
{
    ++open;
    processor.getAudioParameter (index).beginChangeGesture();
}

void TRQParameterGestures::setNormalised (int index, float normalised)
{
    processor.getAudioParameter (index).setValueNotifyingHost (normalised);
}

void TRQParameterGestures::end (int index)
{
    if (open > 0)
        --open;
    processor.getAudioParameter (index).endChangeGesture();
}

void TRQParameterGestures::reset (int index)
{
    setRealInGesture (index, processor.getAudioParameter (index).getPresetDefault());
}

void TRQParameterGestures::setRealInGesture (int index, float real)
{
    begin (index);
    setNormalised (index, toNormalised (static_cast<ParameterId> (index), real));
    end (index);
}

void TRQParameterGestures::abAction (int action)
{
    if (onABAction)
    {
        onABAction (action);
        return;
    }
    // "a" flips between the two slots, "A" copies the live slot to the other.
    auto controller = processor.getPresetController();
    const auto uuid = controller != nullptr ? controller->lastUuid() : juce::String();
    processor.getParameterManager().toggleAB (uuid, action == 1);
}
