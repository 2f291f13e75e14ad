#include "editor/TRQPresetComponent.h"

#include "editor/TRQLookAndFeel.h"
#include "presets/TRQPresetController.h"

juce::String TRQPresetComponent::sectionKey (std::uint32_t kind, const juce::String& title)
{
    return juce::String (kind) + ":" + title;
}

void TRQPresetComponent::build (const TRQPresetController& controller,
                                const std::map<juce::String, bool>& openSections, int newStyle,
                                const juce::String& newNotice)
{
    style = newStyle;
    notice = newNotice;
    for (auto& header : headers)
        removeChildComponent (header.get());
    headers.clear();

    const auto& presets = controller.getPresets();
    const auto& sections = controller.getSections();
    const bool hasCurrent = controller.getHasSelection() && !presets.empty();
    for (size_t s = 0; s < sections.size(); ++s)
    {
        const auto& section = sections[s];
        const auto key = sectionKey (section.kind, section.title);
        const auto found = openSections.find (key);
        const bool open = found != openSections.end() ? found->second : section.expanded;
        auto header = std::make_shared<TRQHeaderElement> ((unsigned)s, section.title, open,
                                                          section.kind == PresetKind::user);
        for (auto i = section.first; i < section.end && i < presets.size(); ++i)
            header->addRow (std::make_shared<TRQPresetElement> (
                i, presets[i].name, presets[i].kind == PresetKind::factory,
                i == controller.getDefaultPresetIndex(),
                hasCurrent && i == controller.getCurrentPresetIndex()));
        header->setStyle (style);
        addAndMakeVisible (*header);
        headers.push_back (std::move (header));
    }
}

TRQPresetElement* TRQPresetComponent::findRow (std::uint32_t presetIndex) const
{
    for (auto& header : headers)
        for (auto& row : header->getRows())
            if (row->getPresetIndex() == presetIndex)
                return row.get();
    return nullptr;
}

void TRQPresetComponent::layOut (int width)
{
    int y = notice.isEmpty() ? 0 : noticeHeight;
    for (auto& header : headers)
    {
        header->setBounds (0, y, width, header->preferredHeight());
        y += header->getHeight();
    }
    setSize (width, y);
}

void TRQPresetComponent::paint (juce::Graphics& g)
{
    if (notice.isEmpty())
        return;
    g.setColour (style == 1 ? juce::Colour (0xffff8a80) : juce::Colour (0xffa3261b));
    g.setFont (juce::Font (TRQLookAndFeel::textFamily, "Regular", 14.0f));
    g.drawFittedText (notice, 10, 0, getWidth() - 20, noticeHeight, juce::Justification::centredLeft, 1,
                      0.8f);
}
