#pragma once

#include <juce_core/juce_core.h>

#include <functional>

// Opens addresses in the user's default web browser. Tests put an opener of their
// own in place so that no browser starts.
namespace TRQBrowser
{
using Opener = std::function<bool (const juce::URL&)>;

bool open (const juce::String& address);
// An empty opener restores the system's.
void setOpener (Opener opener);
} // namespace TRQBrowser
