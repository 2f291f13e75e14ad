#include "state/TRQSharedFile.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

// A rewritten file keeps its permission bits, and its owner where we may give it
// (an administrator writing a user's file). Links and the failures are tried through
// the preset controller.
TEST (TRQSharedFile, AWriteKeepsModeAndOwner)
{
    const juce::TemporaryFile holder ("zolk-shared");
    const auto file = holder.getFile().getChildFile ("Halvane/Preferences.json");
    const auto path = file.getFullPathName().toRawUTF8();
    file.create();
    ASSERT_EQ (::chmod (path, 0640), 0);
    const bool root = ::geteuid() == 0;
    if (root)
    {
        ASSERT_EQ (::chown (path, 65534, 65534), 0);
    }

    const auto result = TRQSharedFile::update (file,
                                               [] (std::string& text)
                                               {
                                                   text += "changed";
                                                   return juce::Result::ok();
                                               });
    ASSERT_TRUE (result.wasOk()) << result.getErrorMessage();
    EXPECT_EQ (file.loadFileAsString(), "changed");
    struct stat info;
    ASSERT_EQ (::stat (path, &info), 0);
    EXPECT_EQ (info.st_mode & 07777, 0640u);
    EXPECT_EQ (info.st_uid, root ? 65534u : ::geteuid());
    holder.getFile().deleteRecursively();
}
