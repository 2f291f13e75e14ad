#include "editor/TRQPresetComponent.h"

#include "presets/TRQPresetController.h"

juce::String TRQPresetComponent::sectionKey (std::uint32_t kind, const juce::String& title)
{
    return juce::String (kind) + ":" + title;
}

void TRQPresetComponent::build (const TRQPresetController& controller,
                                const std::map<juce::String, bool>& openSections, int style)
{
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
    int y = 0;
    for (auto& header : headers)
    {
        header->setBounds (0, y, width, header->preferredHeight());
        y += header->getHeight();
    }
    setSize (width, y);
}
