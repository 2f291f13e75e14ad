#include "presets/TRQPresetController.h"
#include "core/ProcessorTestSupport.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"
#include "state/TRQParameterManager.h"
#include "state/TRQUndoManager.h"
#include "support/ChildTest.h"
#include "support/PresetFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <set>
#include <sys/resource.h>
#include <sys/stat.h>

namespace
{
constexpr const char* defaultUuid = TRQPresetController::factoryDefaultUuid;

struct Listener : TRQSignals::Trackable
{
    void onName (const juce::String& name, bool fromSelection) { names.emplace_back (name, fromSelection); }
    void onModified (bool modified) { modifiedFlags.push_back (modified); }
    void onDefault() { ++defaultChanges; }
    void onLoaded() { ++loads; }

    std::vector<std::pair<juce::String, bool>> names;
    std::vector<bool> modifiedFlags;
    int defaultChanges = 0;
    int loads = 0;
};

class PresetControllerTest : public ::testing::Test
{
protected:
    // Factory: Default (the favourite), Bright, Dark; then More: Sparse, whose value of
    // Wow/Flutter Amount is null.
    void writeFactory (const std::string& favourite = defaultUuid)
    {
        auto sparse = PresetFolder::preset ("Sparse", "f-3", {{2, 30.0f}});
        sparse["values"]["3"] = nullptr;
        PresetFolder::write (
            folder.factory(),
            {PresetFolder::section ("Factory",
                                    {PresetFolder::fullPreset ("Default", defaultUuid),
                                     PresetFolder::fullPreset ("Bright", "f-1", {{2, 80.0f}, {5, -3.0f}}),
                                     PresetFolder::preset ("Dark", "f-2", {{2, 20.0f}})}),
             PresetFolder::section ("More", {sparse})},
            favourite);
    }

    void makeProcessor()
    {
        p = ProcessorTestSupport::make();
        p->getUndoManager().setClock ([] { return std::int64_t (0); });
        controller = p->getPresetController();
        controller->presetNameChanged.connect (&Listener::onName, &listener);
        controller->modifiedChanged.connect (&Listener::onModified, &listener);
        controller->defaultChanged.connect (&Listener::onDefault, &listener);
        controller->presetsLoaded.connect (&Listener::onLoaded, &listener);
    }

    float real (int id) { return p->getAudioParameter (id).getRealValue(); }
    void set (int id, float value)
    {
        p->getAudioParameter (id).setValueNotifyingHost (toNormalised (static_cast<ParameterId> (id), value));
        controller->updateModified (static_cast<std::uint32_t> (id), p->getAudioParameter (id).getValue());
    }
    juce::String selectedName()
    {
        return controller->getPreset (controller->getCurrentPresetIndex()).value.name;
    }
    std::uint32_t indexOf (const juce::String& uuid) { return controller->indexOfUuid (uuid).value; }

    // Factory presets, and the user's "Mine" and "Other", with "Mine" selected and changed.
    void startOnAChangedUserPreset()
    {
        writeFactory();
        PresetFolder::write (folder.user(),
                             {PresetFolder::section ("User", {PresetFolder::fullPreset ("Mine", "u-1"),
                                                              PresetFolder::fullPreset ("Other", "u-2")})});
        makeProcessor();
        controller->selectUuid ("u-1");
        set (2, 66.0f);
    }

    // What a change that wasn't written must leave as it was: the list, the selection,
    // the default, the modified flag, and silence.
    juce::String seen()
    {
        juce::String text;
        for (const auto& preset : controller->getPresets())
            text << preset.uuid << " ";
        const auto signals = listener.names.size() + listener.modifiedFlags.size() +
                             static_cast<std::size_t> (listener.defaultChanges + listener.loads);
        return text << (int)controller->getCurrentPresetIndex() << " "
                    << (int)controller->getDefaultPresetIndex() << " " << (int)controller->getIsModified()
                    << " " << (int)signals;
    }

    // Every change to the user's file, each giving what it came to.
    std::vector<std::pair<const char*, std::function<juce::Result()>>> everyChange()
    {
        return {{"save",
                 [this]
                 {
                     EXPECT_TRUE (controller->savePreset ("New", "", "", currentValues()).isEmpty());
                     return controller->lastWriteResult();
                 }},
                {"replace",
                 [this] { return controller->replacePreset ("u-1", "Mine", "", "", currentValues()); }},
                {"update", [this] { return controller->updatePreset ("u-1", "", currentValues()); }},
                {"edit", [this] { return controller->editPreset ("u-1", "Renamed", "note"); }},
                {"delete", [this] { return controller->deletePreset (indexOf ("u-1")); }},
                {"move", [this] { return controller->movePreset (indexOf ("u-2"), 0); }},
                {"make default", [this] { return controller->makeDefault ("u-2", true); }}};
    }

    TRQPresetController::Values currentValues()
    {
        TRQPresetController::Values values{};
        for (int i = 0; i < 21; ++i)
            values[static_cast<size_t> (i)] = real (i);
        return values;
    }

    PresetFolder folder;
    std::unique_ptr<TRQAudioProcessor> p;
    std::shared_ptr<TRQPresetController> controller;
    Listener listener;
};
} // namespace

TEST_F (PresetControllerTest, WithoutFilesThereAreNoPresetsAndNothingToDo)
{
    makeProcessor();
    EXPECT_TRUE (controller->getPresets().empty());
    EXPECT_EQ (controller->getDefaultPresetIndex(), 0u);
    EXPECT_FALSE (controller->selectPreset (0, true, true));
    controller->selectNext();
    controller->deletePreset (0);
    controller->setDefaultPreset (0);
    EXPECT_FALSE (controller->getPreset (0));
    EXPECT_EQ (controller->nameOfUuid ("anything").value, "None");
    EXPECT_TRUE (controller->noteOfUuid ("anything").present);
    EXPECT_EQ (controller->noteOfUuid ("anything").value, "");
    EXPECT_EQ (controller->lastUuid(), defaultUuid);
    EXPECT_FALSE (controller->lastUuidChecked());
    EXPECT_FALSE (folder.user().exists()) << "nothing was written";
    EXPECT_EQ (p->getUndoManager().getNumTransactions(), 0u);
}

TEST_F (PresetControllerTest, AnInstanceStartsOnTheDefaultPreset)
{
    writeFactory ("f-1");
    makeProcessor();
    EXPECT_EQ (controller->getDefaultPresetIndex(), 1u);
    EXPECT_EQ (selectedName(), "Bright");
    EXPECT_FALSE (controller->getIsModified());
    EXPECT_EQ (p->getPluginState().getAttribute ("LastPresetRecorded"), "f-1");
    EXPECT_FLOAT_EQ (real (2), 80.0f);
    EXPECT_FLOAT_EQ (real (5), -3.0f);
    EXPECT_FLOAT_EQ (p->getAudioParameter (2).getPresetDefault(), 80.0f);
    EXPECT_FLOAT_EQ (p->getAudioParameter (2).getDefaultValue(), toNormalised (2, 50.0f))
        << "the host's default stays";
    EXPECT_EQ (p->getUndoManager().getNumTransactions(), 0u) << "loading is no step of the history";
    EXPECT_TRUE (controller->getSections()[0].expanded);
    EXPECT_FALSE (controller->getSections()[1].expanded);
}

TEST_F (PresetControllerTest, AUserFavouriteBeatsTheFactoryOne)
{
    writeFactory();
    PresetFolder::write (
        folder.user(), {PresetFolder::section ("User", {PresetFolder::preset ("Mine", "u-1", {{2, 10.0f}})})},
        "u-1");
    makeProcessor();
    EXPECT_EQ (controller->getPresets()[0].kind, PresetKind::user);
    EXPECT_EQ (controller->getDefaultPresetIndex(), 0u);
    EXPECT_FLOAT_EQ (real (2), 10.0f);

    // The user's choice of a factory preset holds as well.
    PresetFolder::write (folder.user(),
                         {PresetFolder::section ("User", {PresetFolder::preset ("Mine", "u-1", {})})}, "f-2");
    controller->reload();
    EXPECT_EQ (controller->getDefaultPresetIndex(), indexOf ("f-2"));

    // Without favourites the first factory preset is the default.
    PresetFolder::write (folder.user(),
                         {PresetFolder::section ("User", {PresetFolder::preset ("Mine", "u-1", {})})});
    PresetFolder::write (folder.factory(),
                         {PresetFolder::section ("F", {PresetFolder::preset ("First", "f-9", {})})});
    controller->reload();
    EXPECT_EQ (controller->getDefaultPresetIndex(), 1u);
}

TEST_F (PresetControllerTest, AUuidInBothFilesFindsTheUsersCopy)
{
    writeFactory();
    PresetFolder::write (
        folder.user(),
        {PresetFolder::section ("User", {PresetFolder::preset ("My Bright", "f-1", {{2, 99.0f}})})});
    makeProcessor();
    EXPECT_EQ (indexOf ("f-1"), 0u);
    EXPECT_EQ (controller->nameOfUuid ("f-1").value, "My Bright");
}

TEST_F (PresetControllerTest, SelectingTheSelectedPresetOnlyReloadsItWhenModified)
{
    writeFactory();
    makeProcessor();
    const auto index = controller->getCurrentPresetIndex();
    EXPECT_FALSE (controller->selectPreset (index, true, true));
    EXPECT_EQ (p->getUndoManager().getNumTransactions(), 0u);

    set (2, 66.0f);
    EXPECT_TRUE (controller->getIsModified());
    EXPECT_TRUE (controller->selectPreset (index, true, true));
    EXPECT_FLOAT_EQ (real (2), 50.0f);
    EXPECT_FALSE (controller->getIsModified());
    EXPECT_EQ (p->getUndoManager().getNumTransactions(), 1u);
}

TEST_F (PresetControllerTest, UndoingASelectionBringsBackTheSettingsNameAndMarker)
{
    writeFactory();
    makeProcessor();
    controller->selectUuid ("f-1");
    set (3, 33.0f);
    ASSERT_TRUE (controller->getIsModified());

    controller->selectUuid ("f-2");
    EXPECT_EQ (selectedName(), "Dark");
    EXPECT_FLOAT_EQ (real (2), 20.0f);
    EXPECT_FLOAT_EQ (real (3), 33.0f) << "Dark holds no value for it";

    listener.names.clear();
    p->getUndoManager().undo();
    EXPECT_EQ (selectedName(), "Bright");
    EXPECT_FLOAT_EQ (real (2), 80.0f);
    EXPECT_FLOAT_EQ (real (3), 33.0f);
    EXPECT_TRUE (controller->getIsModified()) << "the marker returns";
    ASSERT_FALSE (listener.names.empty());
    EXPECT_EQ (listener.names.back(), std::make_pair (juce::String ("Bright"), false));
    EXPECT_EQ (p->getPluginState().getAttribute ("LastPresetRecorded"), "f-1");

    p->getUndoManager().redo();
    EXPECT_EQ (selectedName(), "Dark");
    EXPECT_FALSE (controller->getIsModified());
}

TEST_F (PresetControllerTest, ALockedParameterKeepsItsValueThroughAPresetChange)
{
    writeFactory();
    makeProcessor();
    controller->selectUuid ("f-1");
    p->getPluginState().setLock (5, true);
    set (5, 4.0f);

    controller->selectUuid (defaultUuid);
    EXPECT_FLOAT_EQ (real (5), 4.0f);
    EXPECT_FLOAT_EQ (real (2), 50.0f);
    EXPECT_FALSE (controller->getIsModified());
    controller->updateModified ({}, {});
    EXPECT_TRUE (controller->getIsModified()) << "the next check looks at every value";

    set (5, 7.0f);
    p->getUndoManager().undo();
    EXPECT_FLOAT_EQ (real (2), 80.0f);
    EXPECT_FLOAT_EQ (real (5), 4.0f) << "undo restores the locked value from its full snapshot";
}

TEST_F (PresetControllerTest, AbsentAndNullValuesLeaveTheirParametersAlone)
{
    writeFactory();
    makeProcessor();
    set (3, 44.0f);
    set (4, 12.0f);
    controller->selectUuid ("f-3");
    EXPECT_FLOAT_EQ (real (2), 30.0f);
    EXPECT_FLOAT_EQ (real (3), 44.0f);
    EXPECT_FLOAT_EQ (real (4), 12.0f);
    EXPECT_TRUE (controller->getSections()[1].expanded) << "selecting opens the section";
}

TEST_F (PresetControllerTest, TheModifiedCheckIgnoresPowerAndChangesBelowTheStep)
{
    writeFactory();
    makeProcessor();
    EXPECT_FALSE (controller->isParameterModified (0, 0.0f));
    set (0, 0.0f);
    EXPECT_FALSE (controller->getIsModified());

    p->getAudioParameter (2).setValue (toNormalised (2, 50.2f));
    controller->updateModified (2u, toNormalised (2, 50.2f));
    EXPECT_FALSE (controller->getIsModified());

    EXPECT_TRUE (controller->isParameterModified (2, toNormalised (2, 51.0f)));
    set (2, 51.0f);
    EXPECT_TRUE (controller->getIsModified());
    set (2, 50.0f);
    EXPECT_FALSE (controller->getIsModified());
    EXPECT_EQ (listener.modifiedFlags, (std::vector<bool>{true, false}));
}

TEST_F (PresetControllerTest, SavingWritesAUserPresetAndSelectsIt)
{
    writeFactory();
    makeProcessor();
    set (2, 72.0f);
    set (13, -40.5f);

    const auto uuid = controller->savePreset ("Mine", "my note", "the url", currentValues());
    EXPECT_TRUE (juce::Uuid (uuid).toDashedString() == uuid);
    EXPECT_EQ (selectedName(), "Mine");
    EXPECT_EQ (controller->getPresets()[0].uuid, uuid) << "user presets come first";
    EXPECT_FALSE (controller->getIsModified());
    EXPECT_EQ (listener.modifiedFlags.back(), false);

    auto document = PresetFolder::read (folder.user());
    const auto& saved = document["0002"]["sections"][0]["presets"][0];
    EXPECT_EQ (document["0002"]["sections"][0]["section"], "User");
    EXPECT_EQ (saved["name"], "Mine");
    EXPECT_EQ (saved["note"], "my note");
    EXPECT_EQ (saved["url"], "the url");
    EXPECT_EQ (saved["uuid"], uuid.toStdString());
    EXPECT_EQ (saved["values"]["2"].dump(), "72.0");
    EXPECT_EQ (saved["values"]["13"].dump(), "-40.5");

    // The same name again replaces it, under a new uuid; a factory name makes a new one.
    set (2, 12.0f);
    const auto again = controller->savePreset ("Mine", "", "", currentValues());
    EXPECT_NE (again, uuid);
    controller->savePreset ("Bright", "", "", currentValues());
    document = PresetFolder::read (folder.user());
    const auto& list = document["0002"]["sections"][0]["presets"];
    ASSERT_EQ (list.size(), 2u);
    EXPECT_EQ (list[0]["uuid"], again.toStdString());
    EXPECT_EQ (list[0]["values"]["2"].dump(), "12.0");
    EXPECT_EQ (list[1]["name"], "Bright");
    EXPECT_EQ (controller->getPresets().size(), 6u);
    EXPECT_FALSE (controller->indexOfUuid (uuid));
}

TEST_F (PresetControllerTest, AValueThatIsNotFiniteIsSavedAsNull)
{
    makeProcessor();
    auto values = currentValues();
    values[4] = std::numeric_limits<float>::quiet_NaN();
    controller->savePreset ("Odd", "", "", values);
    const auto document = PresetFolder::read (folder.user());
    EXPECT_TRUE (document["0002"]["sections"][0]["presets"][0]["values"]["4"].is_null());
    EXPECT_FALSE (controller->getPresets()[0].values[4]);
}

TEST_F (PresetControllerTest, UpdatingKeepsNameAndNoteAndEditingChangesThem)
{
    writeFactory();
    makeProcessor();
    const auto uuid = controller->savePreset ("Mine", "note", "", currentValues());
    set (2, 90.0f);
    controller->updatePreset (uuid, "new url", currentValues());
    controller->updatePreset ("no-such-uuid", "", currentValues());
    auto saved = PresetFolder::read (folder.user())["0002"]["sections"][0]["presets"];
    ASSERT_EQ (saved.size(), 1u);
    EXPECT_EQ (saved[0]["name"], "Mine");
    EXPECT_EQ (saved[0]["note"], "note");
    EXPECT_EQ (saved[0]["url"], "new url");
    EXPECT_EQ (saved[0]["values"]["2"].dump(), "90.0");

    listener.names.clear();
    controller->editPreset (uuid, "Renamed", "other note");
    EXPECT_EQ (controller->nameOfUuid (uuid).value, "Renamed");
    EXPECT_EQ (controller->noteOfUuid (uuid).value, "other note");
    ASSERT_FALSE (listener.names.empty());
    EXPECT_EQ (listener.names.front(), std::make_pair (juce::String ("Renamed"), false));
}

TEST_F (PresetControllerTest, DeletingTheDefaultFallsBackToTheFirstFactoryPreset)
{
    PresetFolder::write (folder.factory(),
                         {PresetFolder::section ("F", {PresetFolder::preset ("A", "f-a", {}),
                                                       PresetFolder::preset ("B", "f-b", {})})});
    makeProcessor();
    const auto uuid = controller->savePreset ("Mine", "", "", currentValues());
    controller->makeDefault (uuid, true);
    EXPECT_EQ (controller->getDefaultPresetIndex(), indexOf (uuid));
    EXPECT_EQ (listener.defaultChanges, 1);
    EXPECT_EQ (PresetFolder::read (folder.user())["0002"]["favorite"], uuid.toStdString());

    controller->deletePreset (indexOf (uuid));
    EXPECT_FALSE (controller->indexOfUuid (uuid));
    EXPECT_EQ (PresetFolder::read (folder.user())["0002"]["favorite"], uuid.toStdString()) << "left alone";
    EXPECT_EQ (selectedName(), "A");
    EXPECT_EQ (controller->getDefaultPresetIndex(), indexOf ("f-a"));
}

TEST_F (PresetControllerTest, ANewDefaultPresetBecomesTheParametersPresetDefault)
{
    writeFactory();
    makeProcessor();
    controller->setDefaultPreset (indexOf ("f-1"));
    EXPECT_EQ (listener.defaultChanges, 1);
    EXPECT_EQ (controller->getDefaultPresetIndex(), indexOf ("f-1"));
    EXPECT_FLOAT_EQ (p->getAudioParameter (2).getPresetDefault(), 80.0f);
    EXPECT_FLOAT_EQ (p->getAudioParameter (3).getPresetDefault(), 15.0f);
    EXPECT_FLOAT_EQ (real (2), 50.0f) << "the values themselves stay";

    controller->setDefaultPreset (indexOf ("f-1"));
    EXPECT_EQ (listener.defaultChanges, 1) << "already the default";

    controller->makeDefault ("f-2", false);
    EXPECT_EQ (listener.defaultChanges, 1) << "not the default: nothing to undo";
    controller->makeDefault ("f-1", false);
    EXPECT_EQ (controller->getDefaultPresetIndex(), 0u);
    EXPECT_FLOAT_EQ (p->getAudioParameter (2).getPresetDefault(), 50.0f);
}

TEST_F (PresetControllerTest, MovingAUserPresetReordersTheFile)
{
    makeProcessor();
    const auto a = controller->savePreset ("A", "", "", currentValues());
    const auto b = controller->savePreset ("B", "", "", currentValues());
    const auto c = controller->savePreset ("C", "", "", currentValues());
    controller->movePreset (indexOf (c), 0);
    ASSERT_EQ (controller->getPresets().size(), 3u);
    EXPECT_EQ (controller->getPresets()[0].uuid, c);
    EXPECT_EQ (controller->getPresets()[1].uuid, a);
    EXPECT_EQ (controller->getPresets()[2].uuid, b);
}

TEST_F (PresetControllerTest, NextAndPreviousWrapAround)
{
    writeFactory();
    makeProcessor();
    controller->selectPrevious();
    EXPECT_EQ (selectedName(), "Sparse");
    controller->selectNext();
    EXPECT_EQ (selectedName(), "Default");
    controller->selectNext();
    EXPECT_EQ (selectedName(), "Bright");
}

TEST_F (PresetControllerTest, AReloadKeepsOpenSectionsAndFollowsTheRecordedPreset)
{
    writeFactory();
    makeProcessor();
    controller->selectUuid ("f-3");
    const int loads = listener.loads;
    controller->reload();
    EXPECT_EQ (listener.loads, loads + 1);
    EXPECT_TRUE (controller->getSections()[1].expanded);
    EXPECT_EQ (selectedName(), "Sparse");
    EXPECT_EQ (controller->nameOfUuid ("f-3").value, "Sparse");
}

TEST_F (PresetControllerTest, ABBringsBackThePresetSelectionAndMarker)
{
    writeFactory();
    makeProcessor();
    auto& manager = p->getParameterManager();
    controller->selectUuid ("f-1");
    set (4, 5.0f);
    manager.toggleAB (controller->lastUuid(), false);

    controller->selectUuid ("f-2");
    EXPECT_EQ (selectedName(), "Dark");
    manager.toggleAB (controller->lastUuid(), false);
    EXPECT_EQ (selectedName(), "Bright");
    EXPECT_TRUE (controller->getIsModified());
    EXPECT_FLOAT_EQ (real (4), 5.0f);
    EXPECT_FLOAT_EQ (real (2), 80.0f);

    manager.toggleAB (controller->lastUuid(), false);
    EXPECT_EQ (selectedName(), "Dark");
    EXPECT_FALSE (controller->getIsModified());
    EXPECT_FLOAT_EQ (real (2), 20.0f);
}

TEST_F (PresetControllerTest, AnAAXDefaultChunkStartsOnTheUsersDefaultPreset)
{
    writeFactory();
    PresetFolder::write (
        folder.user(), {PresetFolder::section ("User", {PresetFolder::preset ("Mine", "u-1", {{2, 10.0f}})})},
        "u-1");
    auto fresh = ProcessorTestSupport::make (2, 2, 2, true);
    const auto chunk =
        ProcessorTestSupport::chunkFromXml ("<MYPLUGINSETTINGS _2=\"0.9\" defaultChunk=\"1\"/>");
    fresh->getAudioParameter (2).setValue (0.7f);
    fresh->setStateInformation (chunk.getData(), static_cast<int> (chunk.getSize()));
    EXPECT_FLOAT_EQ (fresh->getAudioParameter (2).getRealValue(), 10.0f);
}

TEST_F (PresetControllerTest, TwoInstancesSavingOneAfterTheOtherKeepBothPresets)
{
    makeProcessor();
    auto second = ProcessorTestSupport::make();
    controller->savePreset ("From One", "", "", currentValues());
    second->getPresetController()->savePreset ("From Two", "", "", currentValues());

    const auto list = PresetFolder::read (folder.user())["0002"]["sections"][0]["presets"];
    ASSERT_EQ (list.size(), 2u);
    EXPECT_EQ (list[0]["name"], "From One");
    EXPECT_EQ (list[1]["name"], "From Two");
    controller->reload();
    EXPECT_EQ (controller->getPresets().size(), 2u) << "the other instance's preset shows after a reload";
}

TEST_F (PresetControllerTest, ASavedSessionBringsBackItsPresetLocksAndValues)
{
    writeFactory();
    makeProcessor();
    controller->selectUuid ("f-2");
    set (2, 25.0f);
    set (7, 2.5f);
    p->getPluginState().setLock (7, true);
    juce::MemoryBlock chunk;
    p->getStateInformation (chunk);

    auto fresh = ProcessorTestSupport::make();
    fresh->setStateInformation (chunk.getData(), static_cast<int> (chunk.getSize()));
    auto freshController = fresh->getPresetController();
    freshController->reload();
    freshController->updateModified ({}, {});

    EXPECT_EQ (freshController->getPreset (freshController->getCurrentPresetIndex()).value.name, "Dark");
    EXPECT_TRUE (freshController->getIsModified());
    EXPECT_EQ (fresh->getPluginState().getLockStates(), p->getPluginState().getLockStates());
    for (int i = 0; i < 21; ++i)
        EXPECT_EQ (fresh->getAudioParameter (i).getValue(), p->getAudioParameter (i).getValue()) << i;
}

// A user file that can't be read or written: every change says why, writes nothing,
// and leaves the list, the selection, the default and the modified flag.
TEST_F (PresetControllerTest, AChangeThatCannotBeWrittenChangesNothing)
{
    const auto user = folder.user();
    const auto chmod = [] (const juce::File& f, mode_t mode)
    { ::chmod (f.getFullPathName().toRawUTF8(), mode); };
    struct Case
    {
        const char* what;
        std::function<void()> spoil, mend;
        const char* problem;
        bool unreadable = false;
    };
    const std::vector<Case> cases{
        {"read-only file", [&] { chmod (user, 0444); }, [&] { chmod (user, 0644); },
         "HvnUserPresets.json is Read-Only"},
        {"read-only folder", [&] { chmod (user.getParentDirectory(), 0555); },
         [&] { chmod (user.getParentDirectory(), 0755); }, "The Folder of HvnUserPresets.json is Read-Only"},
        {"folder in its place",
         [&]
         {
             user.deleteFile();
             user.createDirectory();
         },
         [&] { user.deleteRecursively(); }, "HvnUserPresets.json is a Folder, Not a File", true},
        {"syntax error", [&] { user.replaceWithText ("{\n    \"0002\": {,\n}"); }, [] {},
         "Error at Line 2 of HvnUserPresets.json", true},
        {"presets of another form",
         [&]
         { user.replaceWithText (R"({"0002": {"sections": [{"section": "User", "presets": {"0": {}}}]}})"); },
         [] {}, "HvnUserPresets.json is Damaged"},
    };
    for (const auto& c : cases)
    {
        startOnAChangedUserPreset();
        c.spoil();
        const auto text = user.existsAsFile() ? user.loadFileAsString() : juce::String();
        const auto before = seen();
        for (const auto& [change, run] : everyChange())
        {
            EXPECT_EQ (run().getErrorMessage(), c.problem) << c.what << ", " << change;
            EXPECT_EQ (seen(), before) << c.what << ", " << change;
            EXPECT_EQ (user.existsAsFile() ? user.loadFileAsString() : juce::String(), text)
                << c.what << ", " << change;
        }
        EXPECT_EQ (user.getParentDirectory().getNumberOfChildFiles (juce::File::findFilesAndDirectories, "*"),
                   1)
            << c.what << ": no file was left behind";
        // Looking again before a decision leaves the list when the file can't be read
        // at all; a file that reads is listed anew.
        const auto refreshed = controller->refresh();
        EXPECT_EQ (refreshed.failed(), c.unreadable) << c.what;
        if (c.unreadable)
        {
            EXPECT_EQ (refreshed.getErrorMessage(), c.problem);
            EXPECT_EQ (seen(), before) << c.what;
        }
        c.mend();
    }
}

// Two instances in two processes saving at the same moment: each keeps every preset
// of the other.
TEST_F (PresetControllerTest, TwoProcessesSavingAtOnceKeepEveryPreset)
{
    const auto go = folder.user().getSiblingFile ("go");
    go.getParentDirectory().createDirectory();
    std::vector<std::unique_ptr<juce::ChildProcess>> children;
    for (const char* tag : {"A", "B"})
        children.push_back (ChildTest::start ("PresetControllerTest.SavesInAnotherProcess",
                                              folder.user().getFullPathName() + "|" + tag));
    go.create();
    for (auto& child : children)
    {
        ASSERT_NE (child, nullptr);
        EXPECT_EQ (ChildTest::failureOf (*child), "");
    }
    const auto list = PresetFolder::read (folder.user())["0002"]["sections"][0]["presets"];
    std::set<std::string> names;
    for (const auto& preset : list)
        names.insert (preset["name"].get<std::string>());
    EXPECT_EQ (names.size(), 60u);
    EXPECT_EQ (list.size(), 60u);
}

// One of the two processes above.
TEST_F (PresetControllerTest, SavesInAnotherProcess)
{
    const auto role = juce::StringArray::fromTokens (ChildTest::role(), "|", "");
    if (role.size() != 2)
        GTEST_SKIP() << "run by TwoProcessesSavingAtOnceKeepEveryPreset";
    TRQPresetFiles::setLocations ({juce::File (role[0]), folder.factory()});
    makeProcessor();
    const auto go = juce::File (role[0]).getSiblingFile ("go");
    for (int i = 0; i < 1000 && !go.exists(); ++i)
        juce::Thread::sleep (5);
    for (int i = 0; i < 30; ++i)
        ASSERT_TRUE (
            controller->savePreset (role[1] + " " + juce::String (i), "", "", currentValues()).isNotEmpty());
}

// A full disk, as a file size limit in a process of its own.
TEST_F (PresetControllerTest, AFullDiskWritesNothing)
{
    writeFactory();
    PresetFolder::write (folder.user(),
                         {PresetFolder::section ("User", {PresetFolder::fullPreset ("Mine", "u-1")})});
    const auto text = folder.user().loadFileAsString();
    auto child =
        ChildTest::start ("PresetControllerTest.WritesOnAFullDisk",
                          folder.user().getFullPathName() + "|" + folder.factory().getFullPathName());
    ASSERT_NE (child, nullptr);
    EXPECT_EQ (ChildTest::failureOf (*child), "");
    EXPECT_EQ (folder.user().loadFileAsString(), text);
    EXPECT_EQ (
        folder.user().getParentDirectory().getNumberOfChildFiles (juce::File::findFilesAndDirectories, "*"),
        1);
}

// The process of the test above.
TEST_F (PresetControllerTest, WritesOnAFullDisk)
{
    const auto role = juce::StringArray::fromTokens (ChildTest::role(), "|", "");
    if (role.size() != 2)
        GTEST_SKIP() << "run by AFullDiskWritesNothing";
    TRQPresetFiles::setLocations ({juce::File (role[0]), juce::File (role[1])});
    makeProcessor();
    controller->selectUuid ("u-1");
    set (2, 66.0f);
    const auto before = seen();

    std::signal (SIGXFSZ, SIG_IGN);
    struct rlimit limit;
    ASSERT_EQ (::getrlimit (RLIMIT_FSIZE, &limit), 0);
    limit.rlim_cur = 64;
    ASSERT_EQ (::setrlimit (RLIMIT_FSIZE, &limit), 0);

    const juce::String full = "Disk Full: HvnUserPresets.json Left Unchanged";
    EXPECT_TRUE (controller->savePreset ("New", "", "", currentValues()).isEmpty());
    EXPECT_EQ (controller->lastWriteResult().getErrorMessage(), full);
    EXPECT_EQ (controller->updatePreset ("u-1", "", currentValues()).getErrorMessage(), full);
    EXPECT_EQ (controller->deletePreset (indexOf ("u-1")).getErrorMessage(), full);
    EXPECT_EQ (seen(), before);
}

// A shared file of 50 MB, most of it another plug-in's, holding 10,000 of our presets,
// starting with a byte-order mark and reached through a link (names of every script
// and length are saved through the window in PresetWindow.BadInputKeepsEveryPreset).
// Listing, saving and deleting stay right, the other plug-in's entry stays as it was
// and the link stays a link.
TEST_F (PresetControllerTest, ABigSharedFileReachedThroughALink)
{
    nlohmann::json presets = nlohmann::json::array();
    for (int i = 0; i < 10000; ++i)
        presets.push_back (PresetFolder::fullPreset ("P" + std::to_string (i), "u-" + std::to_string (i)));
    nlohmann::json theirs = nlohmann::json::array();
    for (int i = 0; i < 40000; ++i)
        theirs.push_back (std::string (1000, static_cast<char> ('a' + i % 26)));
    nlohmann::json document;
    document["0001"] = {{"blob", theirs}};
    document["0002"]["sections"] = nlohmann::json::array ({PresetFolder::section ("User", presets)});
    const auto real = folder.user().getSiblingFile ("Real Presets.json");
    real.getParentDirectory().createDirectory();
    const auto text = "\xEF\xBB\xBF" + document.dump (4);
    ASSERT_TRUE (real.replaceWithData (text.data(), text.size()));
    ASSERT_GT (real.getSize(), 50 * 1000 * 1000);
    ASSERT_TRUE (real.createSymbolicLink (folder.user(), true));

    makeProcessor();
    EXPECT_EQ (controller->getPresets().size(), 10000u);
    const auto name = juce::String::repeatedString ("Long", 125);
    const auto uuid = controller->savePreset (name, "", "", currentValues());
    ASSERT_TRUE (uuid.isNotEmpty()) << controller->lastWriteResult().getErrorMessage();
    EXPECT_EQ (controller->nameOfUuid (uuid).value, name);
    ASSERT_TRUE (controller->deletePreset (indexOf ("u-5000")).wasOk());
    EXPECT_EQ (controller->getPresets().size(), 10000u);
    EXPECT_FALSE (controller->indexOfUuid ("u-5000"));
    EXPECT_EQ (controller->getPresets()[5000].uuid, "u-5001");

    EXPECT_TRUE (folder.user().isSymbolicLink());
    const auto written = PresetFolder::read (real);
    EXPECT_TRUE (written["0001"] == document["0001"]);
    const auto& list = written["0002"]["sections"][0]["presets"];
    ASSERT_EQ (list.size(), 10000u);
    EXPECT_EQ (list[9999]["uuid"], uuid.toStdString());
}
