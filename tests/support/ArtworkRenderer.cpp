#include "support/ArtworkRenderer.h"

#include "editor/TRQDrawing.h"
#include "editor/TRQLayoutComponent.h"

namespace ArtworkRenderer
{
namespace
{
struct StateControl
{
    int parameter;
    juce::Rectangle<float> area; // canvas rectangle in which the state text is centred
    int value;
};

// Where the switched controls show their state on the canvas.
const StateControl stateControls[] = {
    {0, {401, 186, 50, 50}, 1},  {9, {475, 177, 33, 18}, 0},  {9, {518, 177, 33, 18}, 1},
    {11, {586, 171, 78, 30}, 0}, {14, {698, 171, 78, 30}, 1}, {16, {743, 332, 42, 42}, 1},
    {18, {517, 228, 18, 30}, 1},
};

const int sliders[] = {1, 2, 3, 4, 5, 6, 7, 8, 10, 12, 13, 15, 17, 19, 20};
const int captioned[] = {6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 17, 19, 20};

void paintAt (juce::Graphics& g, const TRQDrawingList& list, juce::Point<float> origin)
{
    juce::Graphics::ScopedSaveState save (g);
    g.addTransform (juce::AffineTransform::translation (origin));
    list.paint (g);
}

void paintCentred (juce::Graphics& g, const TRQDrawingList& list, juce::Rectangle<float> area)
{
    if (list.isEmpty())
        return;
    const auto b = list.elements.front().bounds;
    paintAt (g, list, area.getCentre() - juce::Point<float> (b.getWidth(), b.getHeight()) * 0.5f);
}

juce::Image blank (int w, int h, float scale)
{
    return juce::Image (juce::Image::ARGB, juce::roundToInt ((float)w * scale),
                        juce::roundToInt ((float)h * scale), true, juce::SoftwareImageType());
}
} // namespace

juce::Rectangle<float> frameFromBottom (juce::Rectangle<float> frame)
{
    return frame.withY ((float)canvasHeight - frame.getY() - frame.getHeight());
}

juce::Image renderPanel (TRQLanguage::Language language, int style, float scale)
{
    auto drawing = TRQDrawing::get();
    auto image = blank (canvasWidth, canvasHeight, scale);
    juce::Graphics g (image);
    g.addTransform (juce::AffineTransform::scale (scale));

    TRQLayoutComponent layout;
    layout.setBounds (0, 0, canvasWidth, canvasHeight);
    layout.setStyle (style);
    layout.setLanguage (language);
    layout.paintEntireComponent (g, false);

    for (int p : sliders)
    {
        auto track = drawing.trackList (p, style);
        paintAt (g, track, frameFromBottom (track.elements.front().bounds).getPosition());
    }
    for (int p : captioned)
    {
        auto caption = drawing.paramLabelList (p, language, style);
        if (!caption.isEmpty())
            paintAt (g, caption, frameFromBottom (caption.elements.front().bounds).getPosition());
    }
    for (const auto& c : stateControls)
        paintCentred (g, drawing.paramStringList (c.parameter, c.value, language, style), c.area);
    paintAt (g, drawing.hudList (0, 0, language, style), {403, 130});
    return image;
}

juce::Image renderLabelSheet (TRQLanguage::Language language, int style, float scale)
{
    auto drawing = TRQDrawing::get();
    const int w = 640, h = 230;
    auto image = blank (w, h, scale);
    juce::Graphics g (image);
    g.addTransform (juce::AffineTransform::scale (scale));
    g.fillAll (style == 1 ? juce::Colour (0xff262626) : juce::Colour (0xfffcfcfc));

    // Row 1: state texts on the panel's colour, row 2: the same on the accent.
    float x = 8;
    const std::pair<int, int> states[] = {{9, 0},  {9, 1},  {11, 0}, {11, 1}, {11, 2},
                                          {14, 0}, {14, 1}, {14, 2}, {18, 0}, {18, 1}};
    for (auto [p, v] : states)
    {
        auto list = drawing.paramStringList (p, v, language, style);
        const float bw = list.isEmpty() ? 20.0f : list.elements.front().bounds.getWidth();
        paintAt (g, list, {x, 10});
        x += bw + 10;
    }
    g.setColour (juce::Colour::fromFloatRGBA (0.7607843f, 0.30588236f, 0.32941177f, 1.0f));
    g.fillRect (0, 44, w, 130);
    paintAt (g, drawing.paramStringList (0, 0, language, style), {8, 50});
    paintAt (g, drawing.paramStringList (0, 1, language, style), {50, 50});
    paintAt (g, drawing.paramStringList (16, 0, language, style), {92, 54});
    paintAt (g, drawing.paramStringList (16, 1, language, style), {126, 54});
    paintAt (g, drawing.hudList (0, 0, language, style), {170, 56});
    paintAt (g, drawing.hudList (0, 1, language, style), {226, 56});
    paintAt (g, drawing.nameplateList (style), {270, 50});
    paintAt (g, drawing.glossonymList (language, style), {8, 190});
    return image;
}

juce::Image renderContactSheet (float scale)
{
    const int gap = 6;
    const auto& languages = TRQLanguage::menuLanguages();
    const int rows = (int)languages.size();
    auto sheet = blank (2 * canvasWidth + gap, rows * canvasHeight + (rows - 1) * gap, scale);
    juce::Graphics g (sheet);
    g.fillAll (juce::Colours::grey);
    for (int row = 0; row < rows; ++row)
        for (int style = 0; style < 2; ++style)
        {
            const auto panel = renderPanel (languages[(size_t)row], style, scale);
            g.drawImageAt (panel, juce::roundToInt ((float)(style * (canvasWidth + gap)) * scale),
                           juce::roundToInt ((float)(row * (canvasHeight + gap)) * scale));
        }
    return sheet;
}

bool writePng (const juce::Image& image, const juce::File& file)
{
    file.deleteFile();
    juce::FileOutputStream out (file);
    juce::PNGImageFormat png;
    return out.openedOk() && png.writeImageToStream (image, out);
}
} // namespace ArtworkRenderer
