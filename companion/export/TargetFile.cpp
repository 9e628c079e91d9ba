// SPDX-License-Identifier: MIT
#include "companion/export/TargetFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <utility>

namespace ZorvaneClient {
namespace Companion {

namespace {

const std::string partSuffix = ".part";
constexpr mode_t fileMode = 0666;
/// No more than twice as much waits for the disk, so that a slow one holds up neither the end
/// of the export nor that of the process.
constexpr size_t syncBytes = size_t(8) * 1024 * 1024;

std::string folderOf(const std::string &path)
{
    return path.substr(0, path.rfind('/') + 1);
}

/// Beside `path`, and never longer than a name may be.
std::string partPathOf(const std::string &path)
{
    const std::string name = path.substr(path.rfind('/') + 1);
    return folderOf(path) + name.substr(0, NAME_MAX - partSuffix.size()) + partSuffix;
}

void syncFolder(const std::string &folder)
{
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return;
    ::fsync(fd);
    ::close(fd);
}

} // namespace

TargetFile::TargetFile(std::string targetPath)
    : path(std::move(targetPath)), partPath(partPathOf(path))
{
}

TargetFile::~TargetFile()
{
    discard();
    if (fd >= 0)
        ::close(fd);
}

bool TargetFile::open()
{
    for (;;) {
        fd = ::open(partPath.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, fileMode);
        if (fd < 0)
            return fail("can't make");
        if (!lock())
            return false;
        if (isStillThere())
            return clear();
        // Another process has just given it its name, or removed it.
        ::close(fd);
    }
}

/// A file system without locks goes without.
bool TargetFile::lock()
{
    if (::flock(fd, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK)
        return true;
    ::close(std::exchange(fd, -1)); // so that it isn't removed: it is another's
    errno = EWOULDBLOCK;
    return fail("another export writes");
}

bool TargetFile::isStillThere() const
{
    struct stat mine = {};
    struct stat there = {};
    return ::fstat(fd, &mine) == 0 && ::lstat(partPath.c_str(), &there) == 0 &&
           mine.st_dev == there.st_dev && mine.st_ino == there.st_ino;
}

bool TargetFile::write(const uint8_t *bytes, size_t count)
{
    while (count > 0) {
        const ssize_t written = ::write(fd, bytes, count);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return fail("can't write");
        bytes += written;
        count -= static_cast<size_t>(written);
        unsyncedBytes += static_cast<size_t>(written);
    }
    if (unsyncedBytes >= syncBytes) {
        ::sync_file_range(fd, 0, 0, SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE);
        unsyncedBytes = 0;
    }
    return true;
}

int64_t TargetFile::seek(int64_t offset, int whence)
{
    return ::lseek(fd, offset, whence);
}

int64_t TargetFile::size() const
{
    struct stat status = {};
    return ::fstat(fd, &status) == 0 ? status.st_size : -1;
}

bool TargetFile::clear()
{
    return (::ftruncate(fd, 0) == 0 && ::lseek(fd, 0, SEEK_SET) == 0) || fail("can't empty");
}

bool TargetFile::finish()
{
    if (::fsync(fd) != 0)
        return fail("can't store");
    const std::lock_guard<std::mutex> guard(mutex);
    if (discarded || !isStillThere())
        return false;
    if (std::rename(partPath.c_str(), path.c_str()) != 0)
        return fail("can't name");
    finished = true;
    syncFolder(folderOf(path));
    return true;
}

bool TargetFile::discard()
{
    const std::lock_guard<std::mutex> guard(mutex);
    if (finished)
        return false;
    if (!discarded && fd >= 0 && isStillThere())
        ::unlink(partPath.c_str());
    discarded = true;
    return true;
}

bool TargetFile::fail(const char *what)
{
    errorText = std::string(what) + " " + partPath + ": " + std::strerror(errno);
    return false;
}

} // namespace Companion
} // namespace ZorvaneClient
