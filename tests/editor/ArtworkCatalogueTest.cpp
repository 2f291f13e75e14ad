#include "editor/TRQDrawing.h"
#include "state/ParameterCatalogue.h"

#include <gtest/gtest.h>

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
            const auto expected = toColour (style == 1 ? spec.darkColour : spec.lightColour);
            for (size_t i : {1u, 2u})
                EXPECT_EQ (track.elements[i].fill.colour.withAlpha ((juce::uint8)255), expected) << spec.id;
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
