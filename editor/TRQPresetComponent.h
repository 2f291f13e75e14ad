#pragma once

#include "editor/TRQHeaderElement.h"
#include "editor/TRQMetaComponent.h"

#include <map>

class TRQPresetController;

// The scrolled body of the browser: one header element per section, stacked.
class TRQPresetComponent : public TRQMetaComponent
{
public:
    // Sections open as openFor says, keyed by sectionKey.
    void build (const TRQPresetController& controller, const std::map<juce::String, bool>& openSections,
                int style);
    static juce::String sectionKey (std::uint32_t kind, const juce::String& title);

    const std::vector<std::shared_ptr<TRQHeaderElement>>& getHeaders() const { return headers; }
    TRQPresetElement* findRow (std::uint32_t presetIndex) const;
    // Stacks the sections at this width and takes their total height.
    void layOut (int width);

private:
    std::vector<std::shared_ptr<TRQHeaderElement>> headers;
};
