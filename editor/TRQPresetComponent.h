#pragma once

#include "editor/TRQHeaderElement.h"
#include "editor/TRQMetaComponent.h"

#include <map>

class TRQPresetController;

// The scrolled body of the browser: one header element per section, stacked, under a
// line about the user's file when there is something to say about it.
class TRQPresetComponent : public TRQMetaComponent
{
public:
    static constexpr int noticeHeight = 22;

    // Sections open as openFor says, keyed by sectionKey.
    void build (const TRQPresetController& controller, const std::map<juce::String, bool>& openSections,
                int style, const juce::String& notice);
    static juce::String sectionKey (std::uint32_t kind, const juce::String& title);

    const std::vector<std::shared_ptr<TRQHeaderElement>>& getHeaders() const { return headers; }
    TRQPresetElement* findRow (std::uint32_t presetIndex) const;
    // Stacks the sections at this width and takes their total height.
    void layOut (int width);
    const juce::String& getNotice() const { return notice; }

    void paint (juce::Graphics& g) override;

private:
    std::vector<std::shared_ptr<TRQHeaderElement>> headers;
    juce::String notice;
    int style = 0;
};
