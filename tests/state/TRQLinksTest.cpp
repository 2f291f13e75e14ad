#include "state/TRQLinks.h"
#include "core/ProcessorTestSupport.h"
#include "state/ParameterCatalogue.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"

#include <gtest/gtest.h>

namespace
{
struct HostListener : juce::AudioProcessorListener
{
    std::vector<int> changed;
    void audioProcessorParameterChanged (juce::AudioProcessor*, int index, float) override
    {
        changed.push_back (index);
    }
    void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails&) override {}
};

class LinksTest : public ::testing::Test
{
protected:
    TRQAudioParameter& parameter (int id) { return p->getAudioParameter (id); }
    bool takeFlag (int id)
    {
        float ignored = 0.0f;
        return parameter (id).getIfChanged (ignored);
    }
    void clearFlags()
    {
        for (int i = 0; i < 21; ++i)
            takeFlag (i);
    }

    std::unique_ptr<TRQAudioProcessor> p = ProcessorTestSupport::make();
    HostListener host;
};
} // namespace

TEST_F (LinksTest, EveryParameterOfThisProductHasThePlainManager)
{
    for (const auto& row : ParameterCatalogue::rows())
    {
        EXPECT_TRUE (row.linkedByPairs.empty());
        EXPECT_EQ (row.linkedPrimary[0], 0u);
        EXPECT_EQ (row.linkedSecondary[0], 0u);
        EXPECT_TRUE (parameter (static_cast<int> (row.id)).isAutomatable());
    }
    p->addListener (&host);
    clearFlags();
    parameter (2).setValue (0.3f);
    EXPECT_TRUE (takeFlag (2));
    for (int i = 0; i < 21; ++i)
        EXPECT_FALSE (takeFlag (i)) << "nothing else moved: " << i;
    EXPECT_TRUE (host.changed.empty());
    p->removeListener (&host);
}

TEST_F (LinksTest, APrimaryMovesItsTargetOnlyWhileTheGateIsOn)
{
    // Compression Amount drives Lo-Fi Amount while HQ Mode is on.
    parameter (2).setLinkManager (std::make_unique<TRQLinkedPrimary> (parameter (16), parameter (4)));
    parameter (2).setValue (0.8f);
    EXPECT_FLOAT_EQ (parameter (4).getRealValue(), 50.0f) << "gate off";

    parameter (16).setValue (1.0f);
    clearFlags();
    parameter (2).setValue (0.3f);
    EXPECT_FLOAT_EQ (parameter (4).getRealValue(), 30.0f);
    EXPECT_TRUE (takeFlag (4));
}

TEST_F (LinksTest, ASecondaryRefusesHostChangesWhileTheGateIsOn)
{
    parameter (3).setLinkManager (std::make_unique<TRQLinkedSecondary> (parameter (18)));
    parameter (18).setValue (1.0f);
    EXPECT_FALSE (parameter (3).isAutomatable());
    parameter (3).setValue (0.9f);
    EXPECT_FLOAT_EQ (parameter (3).getRealValue(), 15.0f) << "the host's point is dropped";

    parameter (18).setValue (0.0f);
    parameter (3).setValue (0.9f);
    EXPECT_FLOAT_EQ (parameter (3).getRealValue(), 90.0f);
}

TEST_F (LinksTest, ASwitchMakesTargetsFollowQuietlyAndReleasesThemAudibly)
{
    // Sidechain Listen as a switch: Output Gain follows Input Gain.
    parameter (18).setLinkManager (
        std::make_unique<TRQLinkedBy> (std::vector<TRQLinkedBy::Pair>{{&parameter (1), &parameter (5)}}));
    parameter (1).setValue (toNormalised (1, 6.0f));
    p->addListener (&host);

    parameter (18).setValue (1.0f);
    EXPECT_FLOAT_EQ (parameter (5).getRealValue(), 6.0f);
    EXPECT_TRUE (host.changed.empty()) << "switching on tells the host nothing";

    parameter (1).setValue (toNormalised (1, -3.0f));
    parameter (18).setValue (0.0f);
    EXPECT_FLOAT_EQ (parameter (5).getRealValue(), -3.0f);
    EXPECT_EQ (host.changed, std::vector<int>{5});
    p->removeListener (&host);
}

TEST_F (LinksTest, NoParameterOfThisProductIsHeldOutOfAURL)
{
    float values[21];
    std::fill (std::begin (values), std::end (values), 1.0f);
    for (unsigned id = 0; id <= 21; ++id)
        EXPECT_FALSE (TRQLinks::isHeldByGate (id, values)) << id;
}

TEST_F (LinksTest, ATestCatalogueGetsItsThreeKindsOfLink)
{
    auto rows = ParameterCatalogue::rows();
    rows[18].linkedByPairs = {{1, 5}}; // Sidechain Listen switches Output Gain onto Input Gain
    rows[2].linkedPrimary = {4, 16};   // Compression Amount drives Lo-Fi Amount under HQ Mode
    rows[3].linkedSecondary = {1, 9};  // Wow/Flutter Amount is held while the stereo link is on
    std::array<TRQAudioParameter*, 21> parameters{};
    for (int i = 0; i < 21; ++i)
        parameters[static_cast<size_t> (i)] = &parameter (i);
    TRQLinks::build (parameters, rows);

    EXPECT_NE (dynamic_cast<TRQLinkedBy*> (&parameter (18).getLinkManager()), nullptr);
    EXPECT_NE (dynamic_cast<TRQLinkedPrimary*> (&parameter (2).getLinkManager()), nullptr);
    EXPECT_NE (dynamic_cast<TRQLinkedSecondary*> (&parameter (3).getLinkManager()), nullptr);
    EXPECT_EQ (typeid (parameter (4).getLinkManager()), typeid (TRQLinkManager));

    EXPECT_FALSE (parameter (3).isAutomatable()) << "the stereo link starts on";
    parameter (16).setValue (1.0f);
    parameter (2).setValue (0.2f);
    EXPECT_FLOAT_EQ (parameter (4).getRealValue(), 20.0f);

    rows[2].linkedPrimary = {21, 16};
    EXPECT_THROW (TRQLinks::build (parameters, rows), std::out_of_range);
}
