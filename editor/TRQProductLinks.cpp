#include "editor/TRQProductLinks.h"

#include "presets/TRQPresetURL.h"
#include "state/ParameterCatalogue.h"

#ifndef ZOLK_MANUALS_URL
#define ZOLK_MANUALS_URL ZOLK_MAKER_URL "/zolk-comp/manual"
#endif
#ifndef ZOLK_PRODUCT_URL
#define ZOLK_PRODUCT_URL ZOLK_MAKER_URL "/zolk-comp"
#endif
#ifndef ZOLK_BUILD_STAMP
#define ZOLK_BUILD_STAMP "dev"
#endif

namespace TRQProductLinks
{
Launcher defaultLauncher()
{
    return [] (const juce::String& url) { return juce::URL (url).launchInDefaultBrowser(); };
}

juce::String productPageUrl()
{
    return ZOLK_PRODUCT_URL;
}

juce::String manualUrl (int parameterIndex)
{
    const auto& row = ParameterCatalogue::row (static_cast<ParameterId> (parameterIndex));
    return juce::String (ZOLK_MANUALS_URL) + "#" + juce::String::fromUTF8 (row.identifier.c_str());
}

juce::String buildStamp()
{
    return ZOLK_BUILD_STAMP;
}

juce::String versionLine()
{
    const auto& product = ParameterCatalogue::product();
    return juce::String::fromUTF8 (product.displayName.c_str()) + " " +
           juce::String::fromUTF8 (product.version.c_str()) + " (" + buildStamp() + ")";
}

bool looksLikeSettingsUrl (const juce::String& text)
{
    // Without the "www." the domain also matches an address typed by hand; the
    // product part is the path every copied URL carries.
    auto domain = juce::URL (ZOLK_MAKER_URL).getDomain();
    if (domain.startsWithIgnoreCase ("www."))
        domain = domain.substring (4);
    const auto productPath = TRQPresetURL::base().substring (juce::String (ZOLK_MAKER_URL).length());
    return domain.isNotEmpty() && text.contains (domain) && text.contains (productPath);
}
} // namespace TRQProductLinks
