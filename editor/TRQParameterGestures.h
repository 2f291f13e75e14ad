#pragma once

#include <functional>

class TRQAudioProcessor;

// The one door through which the editor changes parameters. Every drag, wheel, key,
// typed value and reset opens a gesture, sets normalised values and closes it here.
// The gestures go to the host parameters, whose listeners are the host and the
// parameter manager: so every change reaches the undo history as one step per
// gesture. The A/B keys go to the parameter manager's slots.
class TRQParameterGestures
{
public:
    explicit TRQParameterGestures (TRQAudioProcessor& processor);
    virtual ~TRQParameterGestures();

    virtual void begin (int index);
    virtual void setNormalised (int index, float normalised);
    virtual void end (int index);

    // A whole gesture that sets the parameter to its preset default.
    void reset (int index);
    // A whole gesture to one real value.
    void setRealInGesture (int index, float real);

    // The A/B keys: 0 for "a" (flip slots), 1 for "A" (copy the live slot over). A
    // handler, when set, takes them instead.
    virtual void abAction (int action);
    std::function<void (int)> onABAction;

    // How many gestures are open; a test hook and a guard against unbalanced pairs.
    int openGestures() const { return open; }

protected:
    TRQAudioProcessor& processor;

private:
    int open = 0;
};
