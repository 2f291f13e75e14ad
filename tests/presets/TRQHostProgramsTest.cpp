#include "presets/TRQHostPrograms.h"
#include "core/ProcessorTestSupport.h"
#include "editor/TRQAudioProcessorEditor.h"
#include "presets/TRQPresetController.h"
#include "presets/TRQPresetFiles.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"
#include "state/TRQUndoManager.h"
#include "support/PresetFolder.h"

#include <gtest/gtest.h>

// The host's program list over the factory presets, as the processor offers it.
namespace
{
struct ProgramListener : juce::AudioProcessorListener
{
    int programChanges = 0;
    void audioProcessorParameterChanged (juce::AudioProcessor*, int, float) override {}
    void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails& details) override
    {
        programChanges += details.programChanged ? 1 : 0;
    }
};

class HostPrograms : public ::testing::Test
{
protected:
    // Factory: Default, an unnamed preset, Dark; the user file holds Mine.
    void SetUp() override
    {
        PresetFolder::write (folder.factory(),
                             {PresetFolder::section (
                                 "Factory", {PresetFolder::fullPreset ("Default", "f-0"),
                                             PresetFolder::fullPreset ("", "f-1", {{2, 80.0f}, {5, -3.0f}}),
                                             PresetFolder::preset ("Dark", "f-2", {{2, 20.0f}})})},
                             "f-0");
        PresetFolder::write (
            folder.user(),
            {PresetFolder::section ("User", {PresetFolder::preset ("Mine", "u-0", {{2, 5.0f}})})});
        p = ProcessorTestSupport::make();
        p->getUndoManager().setClock ([] { return std::int64_t (0); });
        controller = p->getPresetController();
    }

    float real (int id) { return p->getAudioParameter (id).getRealValue(); }
    juce::String selectedName()
    {
        return controller->getPreset (controller->getCurrentPresetIndex()).value.name;
    }

    juce::MemoryBlock chunkOf (TRQAudioProcessor& processor)
    {
        juce::MemoryBlock chunk;
        processor.getStateInformation (chunk);
        return chunk;
    }

    // A saved state with its "PluginState" changed.
    juce::MemoryBlock edited (const juce::MemoryBlock& chunk,
                              const std::function<void (juce::XmlElement&)>& edit)
    {
        auto root =
            juce::AudioProcessor::getXmlFromBinary (chunk.getData(), static_cast<int> (chunk.getSize()));
        edit (*root->getChildByName ("PluginState"));
        juce::MemoryBlock result;
        juce::AudioProcessor::copyXmlToBinary (*root, result);
        return result;
    }

    PresetFolder folder;
    std::unique_ptr<TRQAudioProcessor> p;
    std::shared_ptr<TRQPresetController> controller;
};
} // namespace

TEST_F (HostPrograms, AreTheFactoryPresetsInTheirOrderEachWithAName)
{
    ASSERT_EQ (p->getNumPrograms(), 3) << "user presets are not among them";
    EXPECT_EQ (p->getProgramName (0), "Default");
    EXPECT_EQ (p->getProgramName (1), "Preset 2");
    EXPECT_EQ (p->getProgramName (2), "Dark");
    EXPECT_EQ (p->getProgramName (7), "Preset 8");
    EXPECT_EQ (p->getCurrentProgram(), 0);

    // Without any factory preset a host still gets one program, with a name.
    folder.factory().deleteFile();
    const auto bare = ProcessorTestSupport::make();
    ASSERT_EQ (bare->getNumPrograms(), 1);
    EXPECT_EQ (bare->getProgramName (0), "Preset 1");
    bare->getAudioParameter (2).setValueNotifyingHost (toNormalised (2, 33.0f));
    bare->setCurrentProgram (0);
    EXPECT_FLOAT_EQ (bare->getAudioParameter (2).getRealValue(), 33.0f);
}

TEST_F (HostPrograms, ChoosingOneActsAsThePresetBrowser)
{
    ProgramListener listener;
    p->addListener (&listener);
    p->setCurrentProgram (2);
    EXPECT_FLOAT_EQ (real (2), 20.0f);
    EXPECT_EQ (selectedName(), "Dark");
    EXPECT_FALSE (controller->getIsModified());
    EXPECT_EQ (p->getCurrentProgram(), 2);
    EXPECT_EQ (p->getUndoManager().getNumTransactions(), 1u);

    // Out of range, or the current one set again: nothing moves, nothing enters the history.
    p->getAudioParameter (2).setValueNotifyingHost (toNormalised (2, 33.0f));
    for (const int program : {-1, 3, 1000, 2})
        p->setCurrentProgram (program);
    EXPECT_FLOAT_EQ (real (2), 33.0f);
    EXPECT_EQ (p->getCurrentProgram(), 2);
    EXPECT_EQ (p->getUndoManager().getNumTransactions(), 1u);

    p->getUndoManager().undo();
    EXPECT_FLOAT_EQ (real (2), 50.0f);
    EXPECT_EQ (selectedName(), "Default");
    EXPECT_EQ (p->getCurrentProgram(), 0) << "the host follows the undo";
    EXPECT_GE (listener.programChanges, 1);
    p->removeListener (&listener);
}

TEST_F (HostPrograms, FollowAFactoryPresetChosenInTheEditorOnly)
{
    ProgramListener listener;
    p->addListener (&listener);
    controller->selectUuid ("f-1");
    EXPECT_EQ (p->getCurrentProgram(), 1);
    EXPECT_EQ (listener.programChanges, 1);
    controller->selectUuid ("u-0");
    EXPECT_EQ (p->getCurrentProgram(), 1) << "a user preset leaves the host's program where it was";
    EXPECT_EQ (listener.programChanges, 1);
    p->removeListener (&listener);
}

TEST_F (HostPrograms, ARestoredProjectKeepsItsSettingsWhenTheHostSetsItsProgramAgain)
{
    p->setCurrentProgram (2);
    p->getAudioParameter (2).setValueNotifyingHost (toNormalised (2, 33.0f));
    controller->updateModified (2u, p->getAudioParameter (2).getValue());
    const auto chunk = chunkOf (*p);

    const auto gone = edited (chunk,
                              [] (juce::XmlElement& state)
                              {
                                  state.setAttribute ("LastPresetRecorded", "no-longer-there");
                                  state.setAttribute ("HostProgram", 40);
                              });
    const auto older =
        edited (chunk, [] (juce::XmlElement& state) { state.removeAttribute ("HostProgram"); });

    // The saved program, a vanished one, and a state saved before programs were kept.
    for (const auto* saved : {&chunk, &gone, &older})
    {
        auto fresh = ProcessorTestSupport::make();
        fresh->setStateInformation (saved->getData(), static_cast<int> (saved->getSize()));
        const auto stored = fresh->getCurrentProgram();
        EXPECT_EQ (stored, 2);
        fresh->setCurrentProgram (stored);
        fresh->setCurrentProgram (40);
        EXPECT_FLOAT_EQ (fresh->getAudioParameter (2).getRealValue(), 33.0f);
        EXPECT_TRUE (fresh->getPresetController()->getIsModified());
        EXPECT_EQ (fresh->getUndoManager().getNumTransactions(), 0u);
    }
}

TEST_F (HostPrograms, WaitWhileAPresetFormIsOpen)
{
    p->getAudioParameter (2).setValueNotifyingHost (toNormalised (2, 33.0f));
    auto* editor = dynamic_cast<TRQAudioProcessorEditor*> (p->createEditorIfNeeded());
    ASSERT_NE (editor, nullptr);
    editor->openModal (2, true, {});
    ASSERT_EQ (editor->getModalState(), 2);

    p->setCurrentProgram (2);
    EXPECT_FLOAT_EQ (real (2), 33.0f) << "the form was opened on these settings";
    EXPECT_EQ (p->getCurrentProgram(), 0);

    editor->closeModal (1);
    p->setCurrentProgram (2);
    EXPECT_FLOAT_EQ (real (2), 20.0f);
    p->editorBeingDeleted (editor);
    delete editor;
}

TEST (PresetFilesBuiltIn, StandInForAMissingFactoryFileOnly)
{
    const auto source = juce::File (ZOLK_SOURCE_DIR).getChildFile ("presets/factory/TQPresets.json");
    TRQPresetFiles::Contents fromSource;
    TRQPresetFiles::read (source, PresetKind::factory, 2, 2, fromSource);
    ASSERT_GT (fromSource.presets.size(), 10u);
    EXPECT_TRUE (TRQPresetFiles::standardLocations().builtInFactory);

    const juce::TemporaryFile installed (".json");
    const auto count = [&] (bool fallback)
    {
        TRQPresetFiles::Contents contents;
        TRQPresetFiles::read ({PresetKind::factory, installed.getFile().getFullPathName(), fallback}, 2, 2,
                              contents);
        return contents.presets.size();
    };
    EXPECT_EQ (count (true), fromSource.presets.size());
    EXPECT_EQ (count (false), 0u);
    PresetFolder::write (installed.getFile(),
                         {PresetFolder::section ("Installed", {PresetFolder::preset ("One", "i-1", {})})});
    EXPECT_EQ (count (true), 1u) << "an installed file wins";
}
