#include "state/TRQSharedFile.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace
{
int modeOf (const juce::File& file)
{
    struct stat info;
    return ::stat (file.getFullPathName().toRawUTF8(), &info) == 0 ? static_cast<int> (info.st_mode & 07777)
                                                                   : -1;
}

void setMode (const juce::File& file, int mode)
{
    ASSERT_EQ (::chmod (file.getFullPathName().toRawUTF8(), static_cast<mode_t> (mode)), 0);
}

juce::Result append (const juce::File& file, const std::string& more)
{
    return TRQSharedFile::update (file,
                                  [&] (std::string& text)
                                  {
                                      text += more;
                                      return juce::Result::ok();
                                  });
}

class SharedFileTest : public ::testing::Test
{
protected:
    ~SharedFileTest() override
    {
        ::chmod (folder.getFullPathName().toRawUTF8(), 0755);
        folder.deleteRecursively();
    }

    juce::TemporaryFile holder{"zolk-shared"};
    juce::File folder = holder.getFile();
    juce::File file = folder.getChildFile ("HvnUserPresets.json");
};
} // namespace

// Whatever stands in the way, the file keeps its text and mode, no temporary file is
// left behind, and the line says what and where.
TEST_F (SharedFileTest, AFileThatCannotBeWrittenStaysAsItIs)
{
    struct Case
    {
        const char* what;
        std::function<void()> spoil;
        const char* problem;
    };
    const std::vector<Case> cases{
        {"read-only file", [&] { setMode (file, 0444); }, "HvnUserPresets.json is Read-Only"},
        {"read-only folder", [&] { setMode (folder, 0555); },
         "The Folder of HvnUserPresets.json is Read-Only"},
        {"folder in its place",
         [&]
         {
             file.deleteFile();
             file.getChildFile ("inside").create();
         },
         "HvnUserPresets.json is a Folder, Not a File"},
    };
    for (const auto& c : cases)
    {
        folder.createDirectory();
        ASSERT_TRUE (file.replaceWithText ("kept"));
        c.spoil();
        const auto mode = modeOf (file);
        const auto result = append (file, " and more");
        EXPECT_EQ (result.getErrorMessage(), c.problem) << c.what;
        EXPECT_EQ (file.isDirectory() ? juce::String ("kept") : file.loadFileAsString(), "kept") << c.what;
        EXPECT_EQ (modeOf (file), mode) << c.what;
        EXPECT_EQ (folder.getNumberOfChildFiles (juce::File::findFilesAndDirectories, "*"), 1) << c.what;
        setMode (folder, 0755);
        folder.deleteRecursively();
    }

    // Where a failing change leaves the text, nothing is written either.
    folder.createDirectory();
    file.replaceWithText ("kept");
    EXPECT_EQ (TRQSharedFile::update (file,
                                      [] (std::string& text)
                                      {
                                          text = "lost";
                                          return juce::Result::fail ("no");
                                      })
                   .getErrorMessage(),
               "no");
    EXPECT_EQ (file.loadFileAsString(), "kept");

    if (::geteuid() != 0)
    {
        setMode (file, 0);
        std::string text;
        EXPECT_EQ (TRQSharedFile::read (file, text).getErrorMessage(), "HvnUserPresets.json Can't be Read");
        EXPECT_EQ (append (file, "x").getErrorMessage(), "HvnUserPresets.json Can't be Read");
    }
}

// A rewritten file keeps its permission bits and owner; a link stays a link, and the
// file it names is what changes; a missing file and folder are made.
TEST_F (SharedFileTest, AWriteKeepsModeOwnerAndLinks)
{
    const auto missing = folder.getChildFile ("new/Preferences.json");
    std::string text = "left over";
    ASSERT_TRUE (TRQSharedFile::read (missing, text).wasOk());
    EXPECT_TRUE (text.empty());
    ASSERT_TRUE (append (missing, "{}").wasOk());
    EXPECT_EQ (missing.loadFileAsString(), "{}");

    ASSERT_TRUE (file.replaceWithText ("a"));
    setMode (file, 0640);
    const bool root = ::geteuid() == 0;
    if (root)
    {
        ASSERT_EQ (::chown (file.getFullPathName().toRawUTF8(), 65534, 65534), 0);
    }
    ASSERT_TRUE (append (file, "b").wasOk());
    EXPECT_EQ (file.loadFileAsString(), "ab");
    EXPECT_EQ (modeOf (file), 0640);
    struct stat info;
    ASSERT_EQ (::stat (file.getFullPathName().toRawUTF8(), &info), 0);
    EXPECT_EQ (info.st_uid, root ? 65534u : ::geteuid());

    const auto link = folder.getChildFile ("link.json");
    ASSERT_TRUE (file.createSymbolicLink (link, true));
    ASSERT_TRUE (append (link, "c").wasOk());
    EXPECT_TRUE (link.isSymbolicLink());
    EXPECT_EQ (file.loadFileAsString(), "abc");
    ASSERT_TRUE (TRQSharedFile::read (link, text).wasOk());
    EXPECT_EQ (text, "abc");
}
