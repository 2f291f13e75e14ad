#pragma once

// Whether an external sidechain feeds the detector. `changed` is raised by the
// first update and by every change, and stays raised: the stages that read it
// simply re-deliver their targets, which costs nothing once they are settled.
struct HVNSidechainState
{
    bool active = false;
    bool previouslyActive = false;
    bool changed = true;
    bool firstUpdate = true;

    void update (bool nowActive)
    {
        previouslyActive = active;
        active = nowActive;
        if (firstUpdate || active != previouslyActive)
            changed = true;
        firstUpdate = false;
    }
};
