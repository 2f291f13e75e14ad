#include "state/TRQSharedFile.h"

#if !JUCE_WINDOWS
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace TRQSharedFile
{
namespace
{
juce::Result isReadOnly (const juce::File& file)
{
    return juce::Result::fail (file.getFileName() + " is Read-Only");
}

juce::Result isAFolder (const juce::File& file)
{
    return juce::Result::fail (file.getFileName() + " is a Folder, Not a File");
}

juce::Result diskIsFull (const juce::File& file)
{
    return juce::Result::fail ("Disk Full: " + file.getFileName() + " Left Unchanged");
}

juce::Result cantBeRead (const juce::File& file)
{
    return juce::Result::fail (file.getFileName() + " Can't be Read");
}

juce::Result cantBeWritten (const juce::File& file)
{
    return juce::Result::fail (file.getFileName() + " Can't be Written");
}

juce::Result folderCantBeMade (const juce::File& file)
{
    return juce::Result::fail ("The Folder of " + file.getFileName() + " Can't be Made");
}

#if !JUCE_WINDOWS
// How long a change waits for another program to finish its own.
constexpr int lockWaitMs = 5000;

juce::Result folderIsReadOnly (const juce::File& file)
{
    return juce::Result::fail ("The Folder of " + file.getFileName() + " is Read-Only");
}

juce::Result belongsToAnotherUser (const juce::File& file)
{
    return juce::Result::fail (file.getFileName() + " Belongs to Another User");
}

juce::Result isBusy (const juce::File& file)
{
    return juce::Result::fail (file.getFileName() + " is Busy in Another Program");
}

// The file a link names, link after link; the file itself when it is none.
juce::File resolved (const juce::File& file)
{
    auto target = file;
    for (int hops = 0; hops < 40 && target.isSymbolicLink(); ++hops)
        target = target.getLinkedTarget();
    return target;
}

juce::Result writeProblem (const juce::File& file, int error)
{
    switch (error)
    {
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return diskIsFull (file);
    case EACCES:
    case EPERM:
    case EROFS:
        return folderIsReadOnly (file);
    default:
        return cantBeWritten (file);
    }
}

// Read-only means no write bit at all, as well as no permission: an administrator
// may write anything, but a file or folder made read-only stays so for us.
bool mayWrite (const char* path, const struct stat& info)
{
    return (info.st_mode & 0222) != 0 && ::access (path, W_OK) == 0;
}

// The folder's lock, held while the file is read, changed and swapped.
class FolderLock
{
public:
    explicit FolderLock (const juce::File& folder)
        : fd (::open (folder.getFullPathName().toRawUTF8(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    {
        if (fd < 0)
            return;
        for (int waited = 0;; waited += 10)
        {
            if (::flock (fd, LOCK_EX | LOCK_NB) == 0)
            {
                locked = true;
                return;
            }
            if ((errno != EWOULDBLOCK && errno != EINTR) || waited >= lockWaitMs)
                return;
            juce::Thread::sleep (10);
        }
    }
    ~FolderLock()
    {
        if (fd >= 0)
            ::close (fd); // releases the lock
    }
    bool isLocked() const { return locked; }

private:
    int fd;
    bool locked = false;
};

bool writeAll (int fd, const std::string& text)
{
    const char* data = text.data();
    std::size_t left = text.size();
    while (left > 0)
    {
        const auto written = ::write (fd, data, left);
        if (written < 0)
        {
            if (errno == EINTR)
                continue;
            return false;
        }
        data += written;
        left -= static_cast<std::size_t> (written);
    }
    return true;
}

// Writes the text beside target and swaps it in; the new file takes the permission
// bits and owner of the one it replaces.
juce::Result replace (const juce::File& target, const std::string& text)
{
    const auto path = target.getFullPathName();
    const auto folder = target.getParentDirectory();
    struct stat old;
    const bool exists = ::stat (path.toRawUTF8(), &old) == 0;
    if (exists && !mayWrite (path.toRawUTF8(), old))
        return old.st_uid != ::geteuid() && (old.st_mode & 0222) != 0 ? belongsToAnotherUser (target)
                                                                      : isReadOnly (target);
    struct stat folderInfo;
    if (::stat (folder.getFullPathName().toRawUTF8(), &folderInfo) != 0 ||
        !mayWrite (folder.getFullPathName().toRawUTF8(), folderInfo))
        return folderIsReadOnly (target);

    const auto temporary = folder.getChildFile (
        "." + target.getFileName() + "." + juce::String::toHexString (juce::Random().nextInt64()) + ".tmp");
    const int fd =
        ::open (temporary.getFullPathName().toRawUTF8(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0)
        return writeProblem (target, errno);

    auto fail = [&] (juce::Result result)
    {
        ::close (fd);
        ::unlink (temporary.getFullPathName().toRawUTF8());
        return result;
    };
    if (exists)
    {
        if (old.st_uid != ::geteuid() && ::fchown (fd, old.st_uid, old.st_gid) != 0)
            return fail (belongsToAnotherUser (target));
        // Our own file keeps its group where we are in it; elsewhere it takes ours.
        if (old.st_uid == ::geteuid() && old.st_gid != ::getegid())
        {
            const bool keptGroup = ::fchown (fd, static_cast<uid_t> (-1), old.st_gid) == 0;
            juce::ignoreUnused (keptGroup);
        }
        if (::fchmod (fd, old.st_mode & 07777) != 0)
            return fail (cantBeWritten (target));
    }
    if (!writeAll (fd, text) || ::fsync (fd) != 0)
        return fail (writeProblem (target, errno));
    if (::close (fd) != 0)
    {
        const int error = errno;
        ::unlink (temporary.getFullPathName().toRawUTF8());
        return writeProblem (target, error);
    }
    if (::rename (temporary.getFullPathName().toRawUTF8(), path.toRawUTF8()) != 0)
    {
        const int error = errno;
        ::unlink (temporary.getFullPathName().toRawUTF8());
        return writeProblem (target, error);
    }
    return juce::Result::ok();
}
#endif
} // namespace

#if !JUCE_WINDOWS
juce::Result read (const juce::File& file, std::string& text)
{
    text.clear();
    const auto target = resolved (file);
    const int fd = ::open (target.getFullPathName().toRawUTF8(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return errno == ENOENT ? juce::Result::ok() : cantBeRead (target);

    struct stat info;
    if (::fstat (fd, &info) != 0 || S_ISDIR (info.st_mode))
    {
        ::close (fd);
        return S_ISDIR (info.st_mode) ? isAFolder (target) : cantBeRead (target);
    }
    text.reserve (static_cast<std::size_t> (std::max<off_t> (0, info.st_size)));
    char buffer[65536];
    for (;;)
    {
        const auto got = ::read (fd, buffer, sizeof (buffer));
        if (got == 0)
            break;
        if (got < 0)
        {
            if (errno == EINTR)
                continue;
            ::close (fd);
            text.clear();
            return cantBeRead (target);
        }
        text.append (buffer, static_cast<std::size_t> (got));
    }
    ::close (fd);
    return juce::Result::ok();
}

juce::Result update (const juce::File& file, const Change& change)
{
    const auto target = resolved (file);
    if (target.isDirectory())
        return isAFolder (target);
    const auto folder = target.getParentDirectory();
    if (!folder.isDirectory() && !folder.createDirectory().wasOk())
        return folderCantBeMade (target);

    const FolderLock lock (folder);
    if (!lock.isLocked())
        return isBusy (target);

    std::string text;
    if (auto result = read (target, text); result.failed())
        return result;
    if (auto result = change (text); result.failed())
        return result;
    return replace (target, text);
}
#else
// Windows keeps preferences in the registry; the preset file is swapped in whole
// through JUCE, without a lock between programs.
juce::Result read (const juce::File& file, std::string& text)
{
    text.clear();
    if (!file.exists())
        return juce::Result::ok();
    if (file.isDirectory())
        return isAFolder (file);
    juce::FileInputStream in (file);
    if (in.failedToOpen())
        return cantBeRead (file);
    juce::MemoryBlock data;
    in.readIntoMemoryBlock (data);
    text.assign (static_cast<const char*> (data.getData()), data.getSize());
    return juce::Result::ok();
}

juce::Result update (const juce::File& file, const Change& change)
{
    if (file.isDirectory())
        return isAFolder (file);
    if (!file.getParentDirectory().createDirectory().wasOk())
        return folderCantBeMade (file);
    std::string text;
    if (auto result = read (file, text); result.failed())
        return result;
    if (auto result = change (text); result.failed())
        return result;
    if (file.exists() && !file.hasWriteAccess())
        return isReadOnly (file);
    juce::TemporaryFile temporary (file);
    if (!temporary.getFile().replaceWithData (text.data(), text.size()))
        return diskIsFull (file);
    return temporary.overwriteTargetFileWithTemporary() ? juce::Result::ok() : cantBeWritten (file);
}
#endif
} // namespace TRQSharedFile
