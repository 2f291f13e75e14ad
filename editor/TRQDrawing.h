#pragma once

#include "editor/TRQDrawingList.h"
#include "state/TRQLanguage.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <string>

// A shared handle on the embedded drawing document. The document is unpacked
// and parsed by the first handle and freed with the last one, so however many
// editors are open it is parsed once, and it costs nothing while none is.
class TRQDrawing
{
public:
    // Takes a handle, parsing the document if no other handle exists.
    static TRQDrawing get();

    TRQDrawing (const TRQDrawing& other);
    TRQDrawing& operator= (const TRQDrawing& other);
    ~TRQDrawing();

    // The parsed document, or null when the embedded data failed to unpack or parse.
    const nlohmann::json* document() const { return doc; }

    // Element lists by group. style is the dark-mode value: 1 is dark, anything else
    // the default. The language is first narrowed to those the drawing holds.
    TRQDrawingList bgList (int style) const;
    TRQDrawingList clumpLabelList (TRQLanguage::Language language, int style) const;
    TRQDrawingList trackList (int parameter, int style) const;
    TRQDrawingList paramLabelList (int parameter, TRQLanguage::Language language, int style) const;
    // Falls back to "en" at every level that lacks the key asked for.
    TRQDrawingList paramStringList (int parameter, int valueIndex, TRQLanguage::Language language,
                                    int style) const;
    TRQDrawingList hudList (int item, int option, TRQLanguage::Language language, int style) const;
    TRQDrawingList glossonymList (TRQLanguage::Language language, int style) const;
    TRQDrawingList nameplateList (int style) const;

    // How many times the document has been parsed in this process.
    static int parseCount();
    // Whether some handle holds the document at the moment.
    static bool isLoaded();

    // Unpacks and parses a gzipped document; null on any failure.
    static std::unique_ptr<nlohmann::json> parseGzipped (const void* data, size_t size);

private:
    explicit TRQDrawing (const nlohmann::json* document);

    const nlohmann::json& documentOrNull() const;
    static const nlohmann::json* acquire();
    static void release();

    const nlohmann::json* doc = nullptr;
};

// "dark" for dark mode 1, "default" otherwise.
std::string styleKey (int darkMode);

// Reads the element array at fragment (a JSON pointer into document) in one style.
TRQDrawingList readDrawingList (const nlohmann::json& document, const nlohmann::json::json_pointer& fragment,
                                const std::string& styleKey);

// Reads one element array in one style.
TRQDrawingList readDrawingList (const nlohmann::json& array, const std::string& styleKey);

// A colour channel of the drawing (0..1) as a byte.
juce::uint8 drawingChannelToByte (double channel);

// An [r, g, b, a] colour of the drawing.
juce::Colour drawingColour (const nlohmann::json& rgba);
