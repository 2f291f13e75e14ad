#pragma once

#include <juce_core/juce_core.h>

#include <functional>

// The product's addresses and the version line of the context menu. The addresses
// are settings of the build (ZOLK_MANUALS_URL, ZOLK_PRODUCT_URL, ZOLK_BUILD_STAMP).
namespace TRQProductLinks
{
// Opens an address in the user's browser; true when it was handed over.
using Launcher = std::function<bool (const juce::String& url)>;

// The system's default browser.
Launcher defaultLauncher();

juce::String productPageUrl();
// The manual's section of one parameter: the manuals page, "#" and its identifier.
// A build without a manuals page opens the installed copy of the manual instead.
juce::String manualUrl (int parameterIndex);
// The same for a given manuals page; an empty one means the installed copy.
juce::String manualUrl (int parameterIndex, const juce::String& manualsPage);

// The installed HTML manual: under the install prefix of the running plug-in or
// program, in the user's ~/.local, or where this build installs it.
juce::File installedManual();

juce::String buildStamp();
// Product name and version, " (", build stamp, ")".
juce::String versionLine();

// Whether a text may be settings copied from this product: it names both the maker's
// domain and the product's address. A plain search, like the one the menu makes.
bool looksLikeSettingsUrl (const juce::String& text);
} // namespace TRQProductLinks
