// Kept apart from the other window helpers: Xlib's macros clash with JUCE's names.
#include <juce_graphics/juce_graphics.h>

#include <X11/Xlib.h>

namespace EditorWindowSupport
{
void warpPointer (juce::Point<int> screen)
{
    if (auto* display = XOpenDisplay (nullptr))
    {
        XWarpPointer (display, None, DefaultRootWindow (display), 0, 0, 0, 0, screen.x, screen.y);
        XFlush (display);
        XCloseDisplay (display);
    }
}
} // namespace EditorWindowSupport
