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
#ifndef ZOLK_INSTALL_PREFIX
#define ZOLK_INSTALL_PREFIX "/usr/local"
#endif

namespace
{
const char* const manualInPrefix = "share/doc/zolk-compressor/manual.html";
}

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
    return manualUrl (parameterIndex, ZOLK_MANUALS_URL);
}

juce::String manualUrl (int parameterIndex, const juce::String& manualsPage)
{
    const auto& row = ParameterCatalogue::row (static_cast<ParameterId> (parameterIndex));
    const auto page = manualsPage.isNotEmpty() ? manualsPage : juce::URL (installedManual()).toString (false);
    return page + "#" + juce::String::fromUTF8 (row.identifier.c_str());
}

juce::File installedManual()
{
    // The plug-in's binary lies a few folders below its prefix: bin/, lib/lv2/<bundle>/,
    // lib/vst3/<bundle>/Contents/<architecture>/.
    auto folder = juce::File::getSpecialLocation (juce::File::currentExecutableFile).getParentDirectory();
    for (int up = 0; up < 6 && folder != folder.getParentDirectory();
         ++up, folder = folder.getParentDirectory())
        if (const auto manual = folder.getChildFile (manualInPrefix); manual.existsAsFile())
            return manual;

    const auto user = juce::File::getSpecialLocation (juce::File::userHomeDirectory).getChildFile (".local");
    if (const auto manual = user.getChildFile (manualInPrefix); manual.existsAsFile())
        return manual;
    return juce::File (ZOLK_INSTALL_PREFIX).getChildFile (manualInPrefix);
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
