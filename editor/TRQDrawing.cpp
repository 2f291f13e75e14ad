#include "editor/TRQDrawing.h"

#include "BinaryData.h"

#include <atomic>
#include <thread>

namespace
{
using json = nlohmann::json;

std::atomic<int> spinFlag{0};
int useCount = 0;
json* shared = nullptr;
std::atomic<int> parses{0};

// Several plug-in instances may open editors from different message loops of a
// host, so the count and the one-time load are guarded; nothing else is.
void lock()
{
    for (int tries = 0;; ++tries)
    {
        int expected = 0;
        if (spinFlag.compare_exchange_weak (expected, 1, std::memory_order_acquire))
            return;
        if (tries >= 20)
            std::this_thread::yield();
    }
}

void unlock()
{
    spinFlag.store (0, std::memory_order_release);
}

juce::Point<float> readPoint (const json& p)
{
    return {p.at (0).get<float>(), p.at (1).get<float>()};
}

void readFill (TRQDrawingElement& e, const json& fill)
{
    const std::string kind = fill.at (0).get<std::string>();
    if (kind == "f")
    {
        e.fill = juce::FillType (drawingColour (fill.at (1)));
    }
    else if (kind == "g")
    {
        const json& stops = fill.at (1);
        e.fill = juce::FillType (juce::ColourGradient (
            drawingColour (stops.at (0).at (0)), readPoint (stops.at (0).at (1)),
            drawingColour (stops.at (1).at (0)), readPoint (stops.at (1).at (1)), false));
    }
}

void readShadow (TRQDrawingElement& e, const json& shadow)
{
    e.shadow.radius = static_cast<int> (shadow.at (0).get<double>());
    e.shadow.colour =
        drawingColour (shadow.at (3)).withAlpha (drawingChannelToByte (shadow.at (1).get<double>()));
    const json& clip = shadow.at (2);
    e.shadowClip = {
        static_cast<int> (clip.at (0).get<double>()), static_cast<int> (clip.at (1).get<double>()),
        static_cast<int> (clip.at (2).get<double>()), static_cast<int> (clip.at (3).get<double>())};
    e.hasShadow = true;
}

void readPattern (TRQDrawingElement& e, const json& pattern)
{
    juce::MemoryOutputStream decoded;
    juce::Image image;
    if (juce::Base64::convertFromBase64 (decoded, juce::String (pattern.at (1).get<std::string>())) &&
        decoded.getDataSize() >= 5)
    {
        juce::MemoryInputStream in (decoded.getData(), decoded.getDataSize(), false);
        if (auto* format = juce::ImageFileFormat::findImageFormatForStream (in))
            image = format->decodeImage (in);
    }
    if (!image.isValid())
    {
        // A fill without its image would otherwise paint plain black.
        e.fill = juce::FillType (juce::Colours::transparentBlack);
        return;
    }
    e.fill = juce::FillType (image, juce::AffineTransform::scale (0.25f));
    e.fill.setOpacity (static_cast<float> (drawingChannelToByte (pattern.at (0).get<double>())) / 255.0f);
}

TRQDrawingElement readElement (const json& record, const std::string& key)
{
    TRQDrawingElement e;
    const json& style = record.contains (key) ? record.at (key) : record.at ("default");
    if (style.contains ("fill"))
        readFill (e, style.at ("fill"));
    if (style.contains ("stroke"))
    {
        const json& stroke = style.at ("stroke");
        e.strokeColour = drawingColour (stroke.at (0));
        e.strokeThickness = stroke.at (1).get<float>();
        e.hasStroke = true;
    }
    if (style.contains ("shadow"))
        readShadow (e, style.at ("shadow"));
    if (style.contains ("pattern"))
        readPattern (e, style.at ("pattern"));
    if (record.contains ("d"))
        e.path.restoreFromString (
            juce::String::fromUTF8 (record.at ("d").get_ref<const std::string&>().c_str()));
    if (record.contains ("bounds"))
    {
        const json& b = record.at ("bounds");
        e.bounds = {b.at (0).get<float>(), b.at (1).get<float>(), b.at (2).get<float>(),
                    b.at (3).get<float>()};
    }
    return e;
}

json::json_pointer pointer (std::initializer_list<std::string> keys)
{
    json::json_pointer p;
    for (const auto& k : keys)
        p /= k;
    return p;
}

const json nullDocument;

std::string code (TRQLanguage::Language language)
{
    return TRQLanguage::languageKey (TRQLanguage::drawingLanguage (language));
}
} // namespace

juce::uint8 drawingChannelToByte (double channel)
{
    if (channel <= 0.0)
        return 0;
    if (channel >= 1.0)
        return 255;
    return static_cast<juce::uint8> (channel * 255.996);
}

juce::Colour drawingColour (const json& rgba)
{
    return juce::Colour (
        drawingChannelToByte (rgba.at (0).get<double>()), drawingChannelToByte (rgba.at (1).get<double>()),
        drawingChannelToByte (rgba.at (2).get<double>()), drawingChannelToByte (rgba.at (3).get<double>()));
}

std::string styleKey (int darkMode)
{
    return darkMode == 1 ? "dark" : "default";
}

TRQDrawingList readDrawingList (const json& array, const std::string& key)
{
    TRQDrawingList list;
    list.elements.reserve (array.size());
    for (const auto& record : array)
        list.elements.push_back (readElement (record, key));
    return list;
}

TRQDrawingList readDrawingList (const json& document, const json::json_pointer& fragment,
                                const std::string& key)
{
    if (document.is_null() || !document.contains (fragment))
        return {};
    return readDrawingList (document.at (fragment), key);
}

std::unique_ptr<json> TRQDrawing::parseGzipped (const void* data, size_t size)
{
    juce::MemoryBlock packed (data, size);
    juce::MemoryOutputStream text;
    {
        juce::GZIPDecompressorInputStream unzip (new juce::MemoryInputStream (packed, false), true,
                                                 juce::GZIPDecompressorInputStream::gzipFormat);
        if (unzip.isExhausted())
            return nullptr;
        text.writeFromInputStream (unzip, -1);
    }
    packed.reset();
    try
    {
        const auto* begin = static_cast<const char*> (text.getData());
        return std::make_unique<json> (json::parse (begin, begin + text.getDataSize()));
    }
    catch (const json::exception&)
    {
        return nullptr;
    }
}

const json* TRQDrawing::acquire()
{
    lock();
    if (useCount == 0)
    {
        shared = parseGzipped (BinaryData::TQDrawing_json_gz,
                               static_cast<size_t> (BinaryData::TQDrawing_json_gzSize))
                     .release();
        ++parses;
    }
    ++useCount;
    const json* doc = shared;
    unlock();
    return doc;
}

void TRQDrawing::release()
{
    json* toFree = nullptr;
    lock();
    if (--useCount == 0)
        std::swap (toFree, shared);
    unlock();
    delete toFree;
}

TRQDrawing TRQDrawing::get()
{
    return TRQDrawing (acquire());
}

TRQDrawing::TRQDrawing (const json* document)
    : doc (document)
{
}

TRQDrawing::TRQDrawing (const TRQDrawing&)
    : doc (acquire())
{
}

TRQDrawing& TRQDrawing::operator= (const TRQDrawing& other)
{
    (void)other; // every handle refers to the one shared document
    return *this;
}

TRQDrawing::~TRQDrawing()
{
    release();
}

const json& TRQDrawing::documentOrNull() const
{
    return doc != nullptr ? *doc : nullDocument;
}

int TRQDrawing::parseCount()
{
    return parses.load();
}

bool TRQDrawing::isLoaded()
{
    lock();
    const bool loaded = useCount > 0;
    unlock();
    return loaded;
}

TRQDrawingList TRQDrawing::bgList (int style) const
{
    return readDrawingList (documentOrNull(), pointer ({"bg"}), styleKey (style));
}

TRQDrawingList TRQDrawing::clumpLabelList (TRQLanguage::Language language, int style) const
{
    return readDrawingList (documentOrNull(), pointer ({"clump-labels", code (language)}), styleKey (style));
}

TRQDrawingList TRQDrawing::trackList (int parameter, int style) const
{
    return readDrawingList (documentOrNull(), pointer ({"tracks", std::to_string (parameter)}),
                            styleKey (style));
}

TRQDrawingList TRQDrawing::paramLabelList (int parameter, TRQLanguage::Language language, int style) const
{
    return readDrawingList (documentOrNull(),
                            pointer ({"param-labels", std::to_string (parameter), code (language)}),
                            styleKey (style));
}

TRQDrawingList TRQDrawing::paramStringList (int parameter, int valueIndex, TRQLanguage::Language language,
                                            int style) const
{
    // Most state texts exist in English only; a missing key at any level falls
    // back to "en" at that level.
    if (doc == nullptr)
        return {};
    const json* node = &doc->at ("param-string-translations");
    for (const std::string& key : {std::to_string (parameter), std::to_string (valueIndex), code (language)})
    {
        if (node->contains (key))
            node = &node->at (key);
        else if (node->contains ("en"))
            node = &node->at ("en");
        else
            return {};
    }
    return readDrawingList (*node, styleKey (style));
}

TRQDrawingList TRQDrawing::hudList (int item, int option, TRQLanguage::Language language, int style) const
{
    return readDrawingList (
        documentOrNull(),
        pointer ({"hud-controls", std::to_string (item), std::to_string (option), code (language)}),
        styleKey (style));
}

TRQDrawingList TRQDrawing::glossonymList (TRQLanguage::Language language, int style) const
{
    return readDrawingList (documentOrNull(), pointer ({"autoglossonyms", code (language)}),
                            styleKey (style));
}

TRQDrawingList TRQDrawing::nameplateList (int style) const
{
    return readDrawingList (documentOrNull(), pointer ({"nameplate"}), styleKey (style));
}
