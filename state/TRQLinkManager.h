#pragma once

// What a parameter does beside itself when it changes. This plain manager ties a
// parameter to nothing; linking managers derive from it and override the hooks.
class TRQLinkManager
{
public:
    virtual ~TRQLinkManager();

    // Whether the owning parameter takes host changes now.
    virtual bool isAutomatable() const;

    // Called by the owning parameter after it took a host change.
    virtual void valueChanged (float newNormalised, float oldReal);
};
