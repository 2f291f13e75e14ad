#pragma once

#include "editor/TRQMetaComponent.h"
#include "editor/TRQModalViewer.h"
#include "state/TRQSignals.h"

// Base of the forms: fields in tab order, Return submits, Escape closes.
class TRQGenericForm : public TRQMetaComponent, public TRQSignals::Trackable
{
public:
    TRQGenericForm();

    // How many modals to close.
    TRQSignals::Signal<void (int)> closeSignal;
    // Another modal to open on top of this one.
    TRQSignals::Signal<void (int, const TRQModalViewer::ModalSettings&)> modalSignal;

    // Checks and carries out the form; false when it stays open.
    virtual bool submit() = 0;
    void cancel() { closeSignal.emit (1); }

    const std::vector<juce::Component*>& getFields() const { return fields; }

    bool keyPressed (const juce::KeyPress& key) override;
    std::unique_ptr<juce::ComponentTraverser> createKeyboardFocusTraverser() override;

protected:
    std::vector<juce::Component*> fields;
};
