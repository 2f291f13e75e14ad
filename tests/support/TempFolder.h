#pragma once

#include <juce_core/juce_core.h>

// A fresh folder for one test, removed with everything in it when the test ends.
struct TempFolder
{
    juce::TemporaryFile holder{"zolk-render-test"};
    juce::File dir = holder.getFile();
    TempFolder() { dir.createDirectory(); }
    ~TempFolder() { dir.deleteRecursively(); }
    juce::File operator/ (const char* name) const { return dir.getChildFile (name); }
};
