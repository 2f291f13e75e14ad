#include "core/TRQAudioProcessor.h"
#include "editor/TRQDrawing.h"
#include "editor/TRQHUDControl.h"
#include "editor/TRQParameterGestures.h"
#include "editor/TRQSlider.h"
#include "meters/HVNLEDMeter.h"
#include "state/ParameterCatalogue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

// The artwork is generated from its own copy of the control geometry and
// colours; these checks keep that copy in step with the catalogue.
namespace
{
juce::Rectangle<float> onScreen (const juce::Rectangle<float>& frameFromBottom)
{
    return frameFromBottom.withY (380.0f - frameFromBottom.getY() - frameFromBottom.getHeight());
}

juce::Rectangle<float> toRectangle (const ParameterRect& r)
{
    return {r.x, r.y, r.width, r.height};
}

juce::Colour toColour (const ParameterColour& c)
{
    return juce::Colour (drawingChannelToByte (c.red), drawingChannelToByte (c.green),
                         drawingChannelToByte (c.blue));
}

// WCAG contrast ratio of two opaque colours.
double contrast (juce::Colour a, juce::Colour b)
{
    auto luminance = [] (juce::Colour c)
    {
        auto linear = [] (float v)
        { return v <= 0.03928f ? v / 12.92f : std::pow ((v + 0.055f) / 1.055f, 2.4f); };
        return 0.2126 * linear (c.getFloatRed()) + 0.7152 * linear (c.getFloatGreen()) +
               0.0722 * linear (c.getFloatBlue());
    };
    const double la = luminance (a), lb = luminance (b);
    return (std::max (la, lb) + 0.05) / (std::min (la, lb) + 0.05);
}

// The pixels one list covers, painted alone at a size: a window of the canvas,
// inked where the list left anything.
class Ink
{
public:
    Ink (const TRQDrawingList& list, juce::Point<float> origin, juce::Rectangle<float> window, float scale)
        : area (window)
        , scale (scale)
        , image (juce::Image::ARGB, (int)std::ceil (window.getWidth() * scale),
                 (int)std::ceil (window.getHeight() * scale), true, juce::SoftwareImageType())
    {
        juce::Graphics g (image);
        g.addTransform (juce::AffineTransform::translation (origin - window.getPosition()).scaled (scale));
        list.paint (g);
    }

    // Inked pixels whose centres, in canvas units, fall where the predicate says.
    template<typename Predicate>
    int count (Predicate where) const
    {
        int n = 0;
        for (int y = 0; y < image.getHeight(); ++y)
            for (int x = 0; x < image.getWidth(); ++x)
                if (image.getPixelAt (x, y).getAlpha() > 24 && where (centreOf (x, y)))
                    ++n;
        return n;
    }
    // Inked pixels outside a canvas rectangle.
    int outside (juce::Rectangle<float> box) const
    {
        return count ([box] (juce::Point<float> p) { return !box.contains (p); });
    }

private:
    juce::Point<float> centreOf (int x, int y) const
    {
        return area.getPosition() + juce::Point<float> ((float)x + 0.5f, (float)y + 0.5f) / scale;
    }

    juce::Rectangle<float> area;
    float scale;
    juce::Image image;
};

juce::Rectangle<float> canvasRect (const ParameterRect& r)
{
    return {r.x, r.y, r.width, r.height};
}
} // namespace

TEST (ArtworkCatalogue, TracksBelongToTheContinuousParametersAndSitOnTheirFrames)
{
    auto drawing = TRQDrawing::get();
    const auto& tracks = drawing.document()->at ("tracks");
    std::set<std::string> continuous;
    for (const auto& spec : ParameterCatalogue::rows())
        if (!spec.discrete)
            continuous.insert (std::to_string (spec.id));
    std::set<std::string> drawn;
    for (auto& [id, list] : tracks.items())
        drawn.insert (id);
    EXPECT_EQ (drawn, continuous);

    for (const auto& spec : ParameterCatalogue::rows())
    {
        if (spec.discrete)
            continue;
        for (int style : {0, 1})
        {
            const auto track = drawing.trackList ((int)spec.id, style);
            ASSERT_EQ (track.elements.size(), 3u);
            EXPECT_EQ (onScreen (track.elements[0].bounds), toRectangle (spec.frame)) << spec.id;
            // The value text's colours: the control's hue, legible on the thumb's face,
            // less so when dimmed.
            const auto face = TRQSlider::thumbFace (style);
            const auto control = toColour (style == 1 ? spec.darkColour : spec.lightColour);
            const auto normal = face.overlaidWith (track.elements[1].fill.colour);
            const auto dimmed = face.overlaidWith (track.elements[2].fill.colour);
            EXPECT_GE (contrast (normal, face), 4.5) << spec.id << " style " << style;
            EXPECT_GE (contrast (dimmed, face), 3.0) << spec.id << " style " << style;
            if (control.getSaturation() > 0.2f)
            {
                EXPECT_NEAR (normal.getHue(), control.getHue(), 0.02f) << spec.id << " style " << style;
            }
            // The ruler stays inside the control.
            const auto ruler = track.elements[0].path.getBounds();
            EXPECT_TRUE (juce::Rectangle<float> (spec.frame.width, spec.frame.height).contains (ruler))
                << spec.id;
        }
    }
}

TEST (ArtworkCatalogue, CaptionsSitOnTheirControlsFrames)
{
    auto drawing = TRQDrawing::get();
    for (auto& [id, perLanguage] : drawing.document()->at ("param-labels").items())
    {
        const auto& spec = ParameterCatalogue::row ((ParameterId)std::stoi (id));
        const auto caption = drawing.paramLabelList ((int)spec.id, TRQLanguage::English, 0);
        EXPECT_EQ (onScreen (caption.elements.at (0).bounds), toRectangle (spec.frame)) << id;
    }
    const auto hud = drawing.hudList (0, 0, TRQLanguage::English, 0);
    EXPECT_EQ (onScreen (hud.elements.at (0).bounds),
               toRectangle (ParameterCatalogue::toggleOverlays().at (0).clickArea));
}

// Every label set at 80, 100 and 200 %, in both styles: words stay inside their
// boxes and clear of the window's edges, the detector LED clear of the compressor's
// heading, "HQ" on its bar, and no thumb anywhere on its travel over a ruler's
// numbers.
TEST (ArtworkCatalogue, NothingOverlapsInAnyLanguageStyleOrSize)
{
    auto drawing = TRQDrawing::get();
    const juce::Rectangle<float> canvas (0.0f, 0.0f, 793.0f, 380.0f);
    const auto inside = canvas.reduced (2.0f);
    const HVNLEDMeter led (3, -60.0f, 0.0f);
    const auto ledCentre = led.getRow().rectangle.getCentre();
    const float ledReach = led.radius + 1.5f;
    // Headings: the main pane's columns, the advanced pane's groups, the sidechain's
    // corner.
    std::vector<juce::Rectangle<float>> headingBoxes;
    for (int column = 0; column < 5; ++column)
        headingBoxes.push_back ({79.0f * (float)column + 1.0f, 2.0f, 77.0f, 32.0f});
    for (int group = 0; group < 3; ++group)
        headingBoxes.push_back ({457.0f + 112.0f * (float)group + 1.0f, 2.0f, 110.0f, 32.0f});
    headingBoxes.push_back ({459.0f, 224.0f, 50.0f, 60.0f});
    const juce::Rectangle<float> bottomBar (459.0f, 352.0f, 332.0f, 26.0f);

    for (float scale : {0.8f, 1.0f, 2.0f})
        for (int style : {0, 1})
            for (auto language : TRQLanguage::menuLanguages())
            {
                SCOPED_TRACE (std::string (TRQLanguage::languageKey (language)) + " style " +
                              std::to_string (style) + " at " + std::to_string (scale));
                const auto headings = drawing.clumpLabelList (language, style);
                ASSERT_EQ (headings.elements.size(), headingBoxes.size());
                for (size_t i = 0; i < headingBoxes.size(); ++i)
                {
                    TRQDrawingList one;
                    one.elements.push_back (headings.elements[i]);
                    const Ink ink (one, {}, headingBoxes[i].expanded (8.0f), scale);
                    EXPECT_EQ (ink.outside (headingBoxes[i]), 0) << "heading " << i;
                    if (i == 1)
                    {
                        EXPECT_EQ (ink.count ([&] (juce::Point<float> p)
                                              { return p.getDistanceFrom (ledCentre) < ledReach; }),
                                   0)
                            << "the LED";
                    }
                }
                for (const auto& [id, perLanguage] : drawing.document()->at ("param-labels").items())
                {
                    const auto& row = ParameterCatalogue::row ((ParameterId)std::stoi (id));
                    auto box = canvasRect (row.frame).reduced (2.0f, 0.0f).getIntersection (inside);
                    // The Mix caption ends where the thumb begins at 0 %.
                    if (row.id == 6)
                        box = box.withRight (row.frame.x + row.innerFrame.x - 22.0f - 1.0f);
                    const Ink ink (drawing.paramLabelList ((int)row.id, language, style),
                                   {row.frame.x, row.frame.y}, box.expanded (8.0f), scale);
                    EXPECT_EQ (ink.outside (box), 0) << "caption " << id;
                }
                // State words centred where the controls show them.
                for (int parameter : {0, 11, 14, 16, 18})
                {
                    const auto& row = ParameterCatalogue::row ((ParameterId)parameter);
                    auto box = canvasRect (row.frame).getIntersection (inside);
                    if (parameter == 16)
                        box = box.getIntersection (bottomBar);
                    const auto inner =
                        canvasRect (row.innerFrame) + juce::Point<float> (row.frame.x, row.frame.y);
                    for (int value = 0; value <= (int)row.max - (int)row.min; ++value)
                    {
                        const auto list = drawing.paramStringList (parameter, value, language, style);
                        const auto b = list.elements.at (0).bounds;
                        const auto at = juce::Rectangle<float> (b.getWidth(), b.getHeight())
                                            .withCentre (inner.getCentre());
                        const Ink ink (list, at.getPosition(), box.expanded (8.0f), scale);
                        EXPECT_EQ (ink.outside (box), 0) << "state " << parameter << "/" << value;
                    }
                }
                // The stereo link's two words, each centred on its click area.
                const auto& link = ParameterCatalogue::row ((ParameterId)9);
                for (int value = 0; value < 2; ++value)
                {
                    const auto list = drawing.paramStringList (9, value, language, style);
                    const auto b = list.elements.at (0).bounds;
                    const auto area = canvasRect (link.stateFrames[(size_t)value]);
                    const auto at =
                        juce::Rectangle<float> (b.getWidth(), b.getHeight()).withCentre (area.getCentre());
                    const Ink ink (list, at.getPosition(), area.expanded (12.0f), scale);
                    EXPECT_EQ (ink.outside (area.expanded (4.0f, 2.0f)), 0) << "stereo link " << value;
                }
                // The noise switch: each option in its own row of the panel.
                const auto panel = TRQHUDControl::panelArea.toFloat();
                for (int option = 0; option < 2; ++option)
                {
                    const auto row = panel.withTrimmedTop (1.0f + 12.0f * (float)option)
                                         .withHeight (12.0f)
                                         .reduced (1.0f, 0.0f);
                    const Ink ink (drawing.hudList (0, option, language, style), panel.getPosition(),
                                   panel.expanded (8.0f), scale);
                    EXPECT_EQ (ink.outside (row), 0) << "noise option " << option;
                }
            }

    // Thumbs at every tenth of their travel leave the rulers' numbers in sight; the
    // ruler's own line and ticks run under them.
    TRQAudioProcessor processor;
    TRQParameterGestures gestures (processor);
    for (const auto& row : ParameterCatalogue::rows())
    {
        if (row.discrete)
            continue;
        TRQSlider slider ((int)row.id, processor.getAudioParameter ((int)row.id), gestures);
        slider.rebuildDrawing();
        const auto origin = juce::Point<float> (row.frame.x, row.frame.y);
        const auto size = slider.thumbBounds();
        const auto line = slider.thumbCentreFor (0.0f);
        for (float scale : {0.8f, 1.0f, 2.0f})
        {
            const Ink ruler (drawing.trackList ((int)row.id, 0), origin,
                             canvasRect (row.frame).expanded (30.0f), scale);
            for (int step = 0; step <= 10; ++step)
            {
                const auto thumb = juce::Rectangle<float> (size.getWidth(), size.getHeight())
                                       .withCentre (slider.thumbCentreFor ((float)step / 10.0f))
                                       .expanded (1.5f) +
                                   origin;
                const int covered = ruler.count (
                    [&] (juce::Point<float> p)
                    {
                        const float across =
                            row.horizontal ? p.y - origin.y - line.y : p.x - origin.x - line.x;
                        return thumb.contains (p) && std::abs (across) > 7.5f;
                    });
                EXPECT_EQ (covered, 0) << "thumb of " << row.id << " at " << step * 10 << " % and " << scale;
            }
        }
    }
}
