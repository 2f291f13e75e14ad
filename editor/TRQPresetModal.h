#pragma once

#include "editor/TRQGenericForm.h"
#include "editor/TRQTextButtonRow.h"
#include "editor/TRQTextDisplay.h"
#include "editor/TRQTextEditorWithLabel.h"
#include "presets/TRQPresetController.h"

// Base of the preset forms: a title, fields stacked under it, an error line, and
// the submit and cancel buttons at the bottom. Values are the settings the form
// stores, real and snapped, taken when it opened.
class TRQPresetModal : public TRQGenericForm
{
public:
    enum FormKind
    {
        saveForm = 0,
        replaceForm = 1,
        editForm = 2,
        updateForm = 3,
        deleteForm = 4
    };

    using Values = TRQPresetController::Values;
    using Settings = TRQModalViewer::ModalSettings;

    TRQPresetModal (std::shared_ptr<TRQPresetController> controller, const Values& values,
                    const Settings& settings);

    // Chooses the form by the settings' kind.
    static std::shared_ptr<TRQPresetModal> make (std::shared_ptr<TRQPresetController> controller,
                                                 const Values& values, const Settings& settings);

    // U+201C name U+201D, long names cut short.
    static juce::String quoted (const juce::String& name);
    static juce::String urlOf (const Values& values);
    static juce::var valuesToVar (const Values& values);
    static Values valuesFromVar (const juce::var& v, const Values& fallback);

    const juce::String& getTitle() const { return titleDisplay->getText(); }
    juce::String getError() const { return errorDisplay->getText(); }
    TRQTextEditorWithLabel* getNameEditor() const { return nameEditor.get(); }
    TRQTextEditorWithLabel* getNotesEditor() const { return notesEditor.get(); }
    juce::ToggleButton* getMakeDefaultToggle() const { return makeDefaultToggle.get(); }
    TRQTextEditorWithLabel* getUrlField() const { return urlField.get(); }
    TRQTextButton& getSubmitButton() { return *submitButton; }
    TRQTextButton& getCancelButton() { return *cancelButton; }

    void resized() override;

protected:
    void setUp (const juce::String& title, const juce::String& submitLabel);
    void addNameAndNotes (const juce::String& name, const juce::String& note);
    void addMakeDefault (bool on);
    void addUrl (const juce::String& explanation, bool withHelpLink);
    void addNote (const juce::String& text);
    void showError (const juce::String& text);
    // Whether a change to the presets went through; if not, its problem is shown and
    // the form stays.
    bool wentThrough (const juce::Result& result);
    // The first user section's preset of that name, other than the one with skipUuid.
    const PresetRecord* userPresetNamed (const juce::String& name, const juce::String& skipUuid) const;
    juce::String uuid() const { return settings.get (Settings::uuid).toString(); }
    // Hands over to the replace form for the existing preset; retireUuid names a preset
    // the replace takes the place of (an edit's own), empty for a new one.
    void askToReplace (const PresetRecord& existing, const juce::String& name, const juce::String& note,
                       bool makeDefault, const juce::String& retireUuid);

    std::shared_ptr<TRQPresetController> controller;
    Values values;
    juce::String presetName;
    Settings settings;
    std::shared_ptr<TRQTextDisplay> titleDisplay, errorDisplay, urlNote, note;
    std::shared_ptr<TRQTextButton> cancelButton, submitButton, helpLink;
    std::shared_ptr<TRQTextButtonRow> buttonRow;
    std::shared_ptr<TRQTextEditorWithLabel> nameEditor, notesEditor, urlField;
    std::shared_ptr<juce::ToggleButton> makeDefaultToggle;

private:
    std::vector<std::pair<juce::Component*, int>> rows;
};
