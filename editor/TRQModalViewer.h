#pragma once

#include "editor/TRQMetaComponent.h"
#include "editor/TRQTextButton.h"
#include "state/TRQSignals.h"

#include <map>

// The cover over the panel that holds a form. Content that is replaced or cleared
// is kept until the message loop comes round again, so that a form can close itself
// from inside its own button's callback.
class TRQModalViewer : public TRQMetaComponent, private juce::AsyncUpdater, public TRQSignals::Trackable
{
public:
    // What a modal was opened with: the form kind and its data by key.
    struct ModalSettings
    {
        enum Key
        {
            kind = 0,
            name = 1,
            note = 2,
            uuid = 3,
            makeDefault = 4,
            values = 5,
            retireUuid = 6
        };

        bool hasForm = false;
        std::map<int, juce::var> data;

        ModalSettings& set (int key, const juce::var& value)
        {
            data[key] = value;
            return *this;
        }
        juce::var get (int key) const
        {
            const auto found = data.find (key);
            return found != data.end() ? found->second : juce::var();
        }
        bool has (int key) const { return data.count (key) != 0; }
        bool operator== (const ModalSettings& other) const;
        bool operator!= (const ModalSettings& other) const { return !(*this == other); }
    };

    TRQModalViewer();
    ~TRQModalViewer() override;

    // Escape or the dismiss button.
    TRQSignals::Signal<void()> closedSignal;

    void show (std::shared_ptr<juce::Component> newContent, float opacity, const ModalSettings& newSettings,
               int width);
    void clear();
    bool isShowingModal() const { return showing; }
    juce::Component* getContent() const { return content.get(); }
    size_t retiredCount() const { return retired.size(); }
    TRQTextButton& getDismissButton() { return *dismissButton; }

    void paint (juce::Graphics& g) override;
    void resized() override;
    bool keyPressed (const juce::KeyPress& key) override;

private:
    void handleAsyncUpdate() override;
    void retire();

    std::shared_ptr<TRQTextButton> dismissButton;
    std::shared_ptr<juce::Component> content;
    std::vector<std::shared_ptr<juce::Component>> retired;
    ModalSettings settings;
    float backgroundOpacity = 0.5f;
    bool showing = false;
};
