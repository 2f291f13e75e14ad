#include "editor/TRQPresetView.h"

#include "editor/TRQLookAndFeel.h"
#include "editor/TRQPresetModal.h"
#include "editor/TRQSymbols.h"
#include "presets/TRQPresetController.h"

namespace
{
constexpr int stripHeight = 24;
} // namespace

TRQPresetView::TRQPresetView (std::shared_ptr<TRQPresetController> c)
    : controller (std::move (c))
    , body (std::make_shared<TRQPresetComponent>())
    , saveButton (std::make_shared<TRQTextButton> (0))
    , closeButton (std::make_shared<TRQTextButton> (1))
{
    juce::Component::setVisible (false);
    setWantsKeyboardFocus (true);
    viewport.setViewedComponent (body.get(), false);
    viewport.setScrollBarsShown (true, false);
    viewport.setScrollBarThickness (8);
    addAndMakeVisible (viewport);

    saveButton->setLabel (0, "+", juce::Font (TRQLookAndFeel::textFamily, "Regular", 20.0f));
    saveButton->setTooltip ("Save New Preset");
    saveButton->setDrawBackground (false);
    saveButton->clickedSignal.connect (this,
                                       [this] (int, int)
                                       {
                                           TRQModalViewer::ModalSettings settings;
                                           modalSignal.emit (2, settings);
                                       });
    closeButton->setGlyph (0, TRQSymbols::dismiss, 18.0f);
    closeButton->setTooltip ("Dismiss");
    closeButton->setDrawBackground (false);
    closeButton->clickedSignal.connect (this, [this] (int, int) { closeSignal.emit(); });
    addChild (saveButton, true);
    addChild (closeButton, true);
    setStyle (0);

    if (controller != nullptr)
    {
        controller->presetsLoaded.connect (this, [this] { triggerAsyncUpdate(); });
        controller->presetIndexChanged.connect (this,
                                                [this] (unsigned index)
                                                {
                                                    markCurrent();
                                                    scrollToPreset (index);
                                                });
        controller->sectionOpened.connect (this,
                                           [this] (unsigned section)
                                           {
                                               const auto& sections = controller->getSections();
                                               if (section < sections.size())
                                                   openSections[TRQPresetComponent::sectionKey (
                                                       sections[section].kind, sections[section].title)] =
                                                       true;
                                               triggerAsyncUpdate();
                                           });
    }
}

TRQPresetView::~TRQPresetView()
{
    cancelPendingUpdate();
}

void TRQPresetView::setVisible (bool shouldBeVisible)
{
    if (shouldBeVisible && controller != nullptr)
    {
        writeProblem = {};
        // Another instance may have changed the user's file since we last looked.
        controller->reload();
        const auto& presets = controller->getPresets();
        const auto current = controller->getCurrentPresetIndex();
        const auto& sections = controller->getSections();
        if (controller->getHasSelection() && current < presets.size() &&
            presets[current].section < sections.size())
        {
            const auto& section = sections[presets[current].section];
            openSections[TRQPresetComponent::sectionKey (section.kind, section.title)] = true;
        }
        rebuild();
        cancelPendingUpdate();
    }
    juce::Component::setVisible (shouldBeVisible);
    if (shouldBeVisible)
    {
        if (controller != nullptr)
            scrollToPreset (controller->getCurrentPresetIndex());
        if (isShowing())
            grabKeyboardFocus();
    }
}

void TRQPresetView::handleAsyncUpdate()
{
    rebuild();
    if (controller != nullptr)
        scrollToPreset (controller->getCurrentPresetIndex());
}

void TRQPresetView::rebuild()
{
    ++rebuilds;
    if (controller == nullptr)
        return;
    const auto viewY = viewport.getViewPositionY();
    body->build (*controller, openSections, style, notice());
    for (auto& header : body->getHeaders())
    {
        header->toggled.connect (this,
                                 [this] (unsigned section, bool open)
                                 {
                                     const auto& sections = controller->getSections();
                                     if (section < sections.size())
                                         openSections[TRQPresetComponent::sectionKey (
                                             sections[section].kind, sections[section].title)] = open;
                                     body->layOut (bodyWidth());
                                 });
        header->moved.connect (this, [this] (std::uint32_t index, std::uint32_t position)
                               { showWriteResult (controller->movePreset (index, position)); });
        for (auto& row : header->getRows())
            row->pressed.connect (this, [this] (std::uint32_t index, const juce::MouseEvent& e, bool menu)
                                  { rowPressed (index, e, menu); });
    }
    body->layOut (bodyWidth());
    viewport.setViewPosition (0, viewY);
}

void TRQPresetView::showWriteResult (const juce::Result& result)
{
    writeProblem = result.getErrorMessage();
    // Nothing was reloaded; the rows are built again once the caller's callback is over.
    if (result.failed())
        triggerAsyncUpdate();
}

juce::String TRQPresetView::notice() const
{
    if (writeProblem.isNotEmpty())
        return writeProblem;
    if (controller != nullptr && controller->getUserFileProblem().isNotEmpty())
        return "Can't Read User Presets: " + controller->getUserFileProblem();
    return {};
}

void TRQPresetView::markCurrent()
{
    if (controller == nullptr)
        return;
    const bool has = controller->getHasSelection();
    for (auto& header : body->getHeaders())
        for (auto& row : header->getRows())
            row->setCurrent (has && row->getPresetIndex() == controller->getCurrentPresetIndex());
}

void TRQPresetView::scrollToPreset (std::uint32_t index)
{
    auto* row = body->findRow (index);
    if (row == nullptr || !row->isVisible())
        return;
    const auto area = body->getLocalArea (row, row->getLocalBounds());
    const int top = viewport.getViewPositionY();
    const int height = viewport.getViewHeight();
    if (area.getBottom() > top + height)
        viewport.setViewPosition (0, area.getBottom() - height);
    else if (area.getY() < top)
        viewport.setViewPosition (0, area.getY());
}

void TRQPresetView::rowPressed (std::uint32_t index, const juce::MouseEvent& e, bool menu)
{
    if (controller == nullptr)
        return;
    if (!menu)
    {
        controller->selectPreset (index, true, true);
        return;
    }
    auto popup = buildRowMenu (index);
    if (onShowMenu)
    {
        onShowMenu (popup, index);
        return;
    }
    juce::Component::SafePointer<TRQPresetView> self (this);
    popup.showMenuAsync (juce::PopupMenu::Options().withTargetComponent (e.eventComponent),
                         [self, index] (int result)
                         {
                             if (self != nullptr && result != 0)
                                 self->rowMenuChosen (index, result);
                         });
}

juce::PopupMenu TRQPresetView::buildRowMenu (std::uint32_t presetIndex) const
{
    juce::PopupMenu menu;
    if (controller == nullptr)
        return menu;
    const auto preset = controller->getPreset (presetIndex);
    if (!preset)
        return menu;
    const auto name = TRQPresetModal::quoted (preset.value.name);
    menu.addItem (makeDefaultItem, "Make " + name + " default");
    if (preset.value.kind != PresetKind::factory)
    {
        menu.addItem (editItem, "Edit " + name + " properties");
        menu.addItem (updateItem, "Update " + name + " to current settings");
        menu.addItem (deleteItem, "Delete " + name);
    }
    return menu;
}

void TRQPresetView::rowMenuChosen (std::uint32_t presetIndex, int itemId)
{
    if (controller == nullptr)
        return;
    const auto preset = controller->getPreset (presetIndex);
    if (!preset)
        return;
    if (itemId == makeDefaultItem)
    {
        showWriteResult (controller->setDefaultPreset (presetIndex));
        return;
    }
    const int kind = itemId == editItem     ? TRQPresetModal::editForm
                     : itemId == updateItem ? TRQPresetModal::updateForm
                     : itemId == deleteItem ? TRQPresetModal::deleteForm
                                            : -1;
    if (kind < 0 || preset.value.kind == PresetKind::factory)
        return;
    TRQModalViewer::ModalSettings settings;
    settings.hasForm = true;
    settings.set (TRQModalViewer::ModalSettings::kind, kind)
        .set (TRQModalViewer::ModalSettings::uuid, preset.value.uuid);
    modalSignal.emit (2, settings);
}

bool TRQPresetView::step (int direction)
{
    if (controller == nullptr || !controller->getHasSelection())
        return false;
    const auto count = (std::int64_t)controller->getPresets().size();
    const auto next = (std::int64_t)controller->getCurrentPresetIndex() + direction;
    // No wrap here: at the ends the key belongs to whoever wants it next.
    if (next < 0 || next >= count)
        return false;
    controller->selectPreset ((std::uint32_t)next, true, true);
    return true;
}

bool TRQPresetView::keyPressed (const juce::KeyPress& key)
{
    if (key == juce::KeyPress::escapeKey)
    {
        closeSignal.emit();
        return true;
    }
    if (key == juce::KeyPress::leftKey || key == juce::KeyPress::upKey)
        return step (-1);
    if (key == juce::KeyPress::rightKey || key == juce::KeyPress::downKey)
        return step (1);
    return false;
}

void TRQPresetView::setStyle (int newStyle)
{
    style = newStyle;
    const auto ink = style == 1 ? juce::Colours::white.withAlpha (0.88f) : juce::Colour (0xff2a2a2a);
    saveButton->setTextColour (ink);
    closeButton->setTextColour (ink);
    for (auto& header : body->getHeaders())
        header->setStyle (style);
    repaint();
}

void TRQPresetView::paint (juce::Graphics& g)
{
    const bool dark = style == 1;
    g.fillAll (dark ? juce::Colour (0xff262626) : juce::Colour (0xfff3f0eb));
    g.setColour (dark ? juce::Colours::white.withAlpha (0.92f) : juce::Colour (0xff2a2a2a));
    g.setFont (juce::Font (TRQLookAndFeel::textFamily, "Regular", 18.0f));
    g.drawText ("Presets", 10, 0, getWidth() - 80, stripHeight, juce::Justification::centredLeft, false);
}

void TRQPresetView::resized()
{
    const int w = getWidth();
    closeButton->setBounds (w - 24 - 20, 2, 20, 20);
    saveButton->setBounds (w - 24 - 44, 2, 20, 20);
    viewport.setBounds (0, stripHeight, w, std::max (0, getHeight() - stripHeight));
    body->layOut (bodyWidth());
}
