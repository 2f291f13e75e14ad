#include "editor/TRQPresetModal.h"

#include "editor/TRQBrowser.h"
#include "editor/TRQFontFallback.h"
#include "editor/TRQLookAndFeel.h"
#include "editor/TRQPresetDeleteModal.h"
#include "editor/TRQPresetEditModal.h"
#include "editor/TRQPresetReplaceModal.h"
#include "editor/TRQPresetSaveModal.h"
#include "editor/TRQPresetUpdateModal.h"
#include "presets/TRQPresetURL.h"

namespace
{
constexpr int margin = 8;
constexpr int maxQuotedLength = 40;

juce::Colour modalText()
{
    return juce::Colours::white.withAlpha ((juce::uint8)243);
}
} // namespace

TRQPresetModal::TRQPresetModal (std::shared_ptr<TRQPresetController> c, const Values& v, const Settings& s)
    : controller (std::move (c))
    , values (v)
    , settings (s)
{
    if (controller != nullptr && settings.has (Settings::uuid))
        presetName = controller->nameOfUuid (uuid()).value;
}

std::shared_ptr<TRQPresetModal> TRQPresetModal::make (std::shared_ptr<TRQPresetController> controller,
                                                      const Values& values, const Settings& settings)
{
    switch ((int)settings.get (Settings::kind))
    {
    case replaceForm:
        return std::make_shared<TRQPresetReplaceModal> (controller, values, settings);
    case editForm:
        return std::make_shared<TRQPresetEditModal> (controller, values, settings);
    case updateForm:
        return std::make_shared<TRQPresetUpdateModal> (controller, values, settings);
    case deleteForm:
        return std::make_shared<TRQPresetDeleteModal> (controller, values, settings);
    default:
        return std::make_shared<TRQPresetSaveModal> (controller, values, settings);
    }
}

juce::String TRQPresetModal::quoted (const juce::String& name)
{
    auto shown = name.length() > maxQuotedLength
                     ? name.substring (0, maxQuotedLength - 1).trimEnd() + juce::String::charToString (0x2026)
                     : name;
    return juce::String::charToString (0x201C) + shown + juce::String::charToString (0x201D);
}

juce::String TRQPresetModal::urlOf (const Values& v)
{
    float raw[kNumParameters];
    std::copy (v.begin(), v.end(), raw);
    return TRQPresetURL::settingsAsUrl (raw);
}

juce::var TRQPresetModal::valuesToVar (const Values& v)
{
    juce::Array<juce::var> list;
    for (float x : v)
        list.add (x);
    return list;
}

TRQPresetModal::Values TRQPresetModal::valuesFromVar (const juce::var& v, const Values& fallback)
{
    auto result = fallback;
    if (auto* list = v.getArray(); list != nullptr && list->size() == (int)result.size())
        for (size_t i = 0; i < result.size(); ++i)
            result[i] = (float)(*list)[(int)i];
    return result;
}

void TRQPresetModal::setUp (const juce::String& title, const juce::String& submitLabel)
{
    const juce::Font titleFont (TRQLookAndFeel::textFamily, "Bold", 20.0f);
    titleDisplay = std::make_shared<TRQTextDisplay> (TRQFontFallback::fontFor (title, titleFont),
                                                     juce::Justification::centredLeft);
    titleDisplay->setColour (modalText());
    titleDisplay->setText (title);
    addChild (titleDisplay, true);

    errorDisplay = std::make_shared<TRQTextDisplay> (juce::Font (16.0f, juce::Font::italic),
                                                     juce::Justification::centredLeft);
    errorDisplay->setColour (juce::Colours::white);
    addChild (errorDisplay, true);

    const juce::Font buttonFont (TRQLookAndFeel::textFamily, "Regular", 16.0f);
    submitButton = std::make_shared<TRQTextButton> (1);
    submitButton->setLabel (0, submitLabel, buttonFont);
    submitButton->setFill (0, juce::Colours::white.withAlpha (0.92f));
    submitButton->setTextColour (juce::Colour::fromFloatRGBA (0.57254905f, 0.23137255f, 0.24705882f, 1.0f));
    submitButton->clickedSignal.connect (this, [this] (int, int) { submit(); });
    cancelButton = std::make_shared<TRQTextButton> (0);
    cancelButton->setLabel (0, "Cancel", buttonFont);
    cancelButton->setFill (0, juce::Colours::white.withAlpha (0.2f));
    cancelButton->clickedSignal.connect (this, [this] (int, int) { cancel(); });
    buttonRow = std::make_shared<TRQTextButtonRow>();
    buttonRow->addButton (cancelButton);
    buttonRow->addButton (submitButton);
    addChild (buttonRow, true);
}

void TRQPresetModal::addNameAndNotes (const juce::String& name, const juce::String& note)
{
    nameEditor = std::make_shared<TRQTextEditorWithLabel> ("Preset Name");
    nameEditor->setText (name);
    notesEditor = std::make_shared<TRQTextEditorWithLabel> (juce::String ("Notes ") + "(Optional)", true);
    notesEditor->setText (note);
    for (auto* editor : {nameEditor.get(), notesEditor.get()})
    {
        editor->getField().onReturnKey = [this] { submit(); };
        editor->getField().onEscapeKey = [this] { cancel(); };
    }
    addChild (nameEditor, true);
    addChild (notesEditor, true);
    rows.push_back ({nameEditor.get(), 52});
    rows.push_back ({notesEditor.get(), 70});
    fields.push_back (&nameEditor->getField());
    fields.push_back (&notesEditor->getField());
}

void TRQPresetModal::addMakeDefault (bool on)
{
    makeDefaultToggle = std::make_shared<juce::ToggleButton> ("Make Default");
    makeDefaultToggle->setToggleState (on, juce::dontSendNotification);
    makeDefaultToggle->setColour (juce::ToggleButton::textColourId, modalText());
    makeDefaultToggle->setColour (juce::ToggleButton::tickColourId, juce::Colours::white);
    makeDefaultToggle->setColour (juce::ToggleButton::tickDisabledColourId,
                                  juce::Colours::white.withAlpha (0.7f));
    addChild (makeDefaultToggle, true);
    rows.push_back ({makeDefaultToggle.get(), 26});
    fields.push_back (makeDefaultToggle.get());
}

void TRQPresetModal::addUrl (const juce::String& explanation, bool withHelpLink)
{
    if (explanation.isNotEmpty())
    {
        urlNote = std::make_shared<TRQTextDisplay> (juce::Font (16.0f, juce::Font::italic),
                                                    juce::Justification::topLeft);
        urlNote->setColour (juce::Colours::white.withAlpha ((juce::uint8)191));
        urlNote->setText (explanation);
        addChild (urlNote, true);
        rows.push_back ({urlNote.get(), 44});
    }
    urlField = std::make_shared<TRQTextEditorWithLabel> ("Preset URL");
    urlField->getField().setReadOnly (true);
    urlField->getField().setCaretVisible (false);
    urlField->getField().setFont (juce::Font (TRQLookAndFeel::textFamily, "Regular", 14.0f));
    urlField->setText (urlOf (values));
    urlField->getField().onReturnKey = [this] { submit(); };
    urlField->getField().onEscapeKey = [this] { cancel(); };
    addChild (urlField, true);
    rows.push_back ({urlField.get(), 52});
    fields.push_back (&urlField->getField());
    if (withHelpLink)
    {
        helpLink = std::make_shared<TRQTextButton> (2);
        helpLink->setLabel (0, "What's this?", juce::Font (15.0f, juce::Font::italic));
        helpLink->setDrawBackground (false);
        helpLink->setJustification (juce::Justification::centredRight);
        helpLink->setTooltip (TRQPresetURL::base());
        helpLink->clickedSignal.connect (this, [] (int, int) { TRQBrowser::open (TRQPresetURL::base()); });
        addChild (helpLink, true);
    }
}

void TRQPresetModal::addNote (const juce::String& text)
{
    note = std::make_shared<TRQTextDisplay> (juce::Font (16.0f, juce::Font::italic),
                                             juce::Justification::topLeft);
    note->setColour (juce::Colours::white.withAlpha ((juce::uint8)191));
    note->setText (text);
    addChild (note, true);
    rows.push_back ({note.get(), 44});
}

void TRQPresetModal::showError (const juce::String& text)
{
    errorDisplay->setText (text);
}

bool TRQPresetModal::wentThrough (const juce::Result& result)
{
    if (result.failed())
        showError (result.getErrorMessage());
    return result.wasOk();
}

void TRQPresetModal::askToReplace (const PresetRecord& existing, const juce::String& name,
                                   const juce::String& note, bool makeDefault, const juce::String& retireUuid)
{
    Settings replace;
    replace.hasForm = true;
    replace.set (Settings::kind, (int)replaceForm)
        .set (Settings::uuid, existing.uuid)
        .set (Settings::name, name)
        .set (Settings::note, note)
        .set (Settings::makeDefault, makeDefault)
        .set (Settings::values, valuesToVar (values));
    if (retireUuid.isNotEmpty())
        replace.set (Settings::retireUuid, retireUuid);
    modalSignal.emit (2, replace);
}

const PresetRecord* TRQPresetModal::userPresetNamed (const juce::String& name,
                                                     const juce::String& skipUuid) const
{
    if (controller == nullptr)
        return nullptr;
    const auto& sections = controller->getSections();
    const auto firstUser = std::find_if (sections.begin(), sections.end(),
                                         [] (const PresetSection& s) { return s.kind == PresetKind::user; });
    if (firstUser == sections.end())
        return nullptr;
    const auto sectionIndex = (std::uint32_t)std::distance (sections.begin(), firstUser);
    for (const auto& preset : controller->getPresets())
        if (preset.kind == PresetKind::user && preset.section == sectionIndex && preset.name == name &&
            preset.uuid != skipUuid)
            return &preset;
    return nullptr;
}

void TRQPresetModal::resized()
{
    const int w = getWidth() - 2 * margin;
    // The title stays clear of the viewer's dismiss button at the top right.
    titleDisplay->setBounds (margin, 4, w - 28, 36);
    int y = 48;
    for (auto& [component, height] : rows)
    {
        component->setBounds (margin, y, w, height);
        y += height + 8;
    }
    if (helpLink != nullptr && urlField != nullptr)
        helpLink->setBounds (urlField->getRight() - 120, urlField->getY() - 2, 120, 22);
    errorDisplay->setBounds (margin, y, w, 22);
    buttonRow->setBounds (margin, getHeight() - 48, getWidth() - 16, 48);
}
