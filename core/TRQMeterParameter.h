#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

// A read-only meter that some hosts show beside their own meters. It exists only
// in the formats that ask for one, behind the 21 parameters.
class TRQMeterParameter : public juce::AudioProcessorParameterWithID
{
public:
    TRQMeterParameter (int index, const juce::String& name, unsigned kind);

    float getValue() const override { return value.load(); }
    void setValue (float newValue) override { value.store (newValue); }
    float getDefaultValue() const override { return 0.0f; }
    juce::String getText (float normalised, int) const override { return juce::String (normalised, 2); }
    float getValueForText (const juce::String& text) const override { return text.getFloatValue(); }
    bool isAutomatable() const override { return false; }
    Category getCategory() const override { return category; }

private:
    std::atomic<float> value{0.0f};
    Category category;
};
