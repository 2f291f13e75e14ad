#include "editor/TRQBrowser.h"

namespace
{
TRQBrowser::Opener& current()
{
    static TRQBrowser::Opener opener;
    return opener;
}
} // namespace

bool TRQBrowser::open (const juce::String& address)
{
    const juce::URL url (address);
    if (current())
        return current() (url);
    return url.launchInDefaultBrowser();
}

void TRQBrowser::setOpener (Opener opener)
{
    current() = std::move (opener);
}
