// SPDX-License-Identifier: MIT
#include "companion/FrameFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace ZorvaneClient {
namespace Companion {

namespace {

/// Where the client keeps its frame files.
std::string temporaryDirectory()
{
    const char *directory = std::getenv("TMPDIR");
    return directory && *directory ? directory : "/tmp";
}

/// No access is allowed for so many bytes before and after the mapping: what runs over it ends
/// the process and harms nothing else.
constexpr size_t guardBytes = size_t(1024) * 1024;

void *mapBetweenGuards(int fd)
{
    void *reserved = mmap(nullptr, FrameFile::sizeBytes + 2 * guardBytes, PROT_NONE,
                          MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (reserved == MAP_FAILED)
        return MAP_FAILED;
    return mmap(static_cast<uint8_t *>(reserved) + guardBytes, FrameFile::sizeBytes,
                PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, fd, 0);
}

} // namespace

FrameFile::~FrameFile()
{
    if (memory)
        munmap(memory - guardBytes, sizeBytes + 2 * guardBytes);
}

bool FrameFile::open(const std::string &name)
{
    const std::string path = temporaryDirectory() + "/" + name;
    const int fd = ::open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (fd < 0) {
        errorText = path + ": " + std::strerror(errno);
        return false;
    }
    struct stat status = {};
    if (fstat(fd, &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_size != static_cast<off_t>(sizeBytes)) {
        errorText = path + ": not a file of " + std::to_string(sizeBytes) + " bytes";
        ::close(fd);
        return false;
    }
    void *mapped = mapBetweenGuards(fd);
    if (mapped == MAP_FAILED)
        errorText = path + ": " + std::strerror(errno);
    else
        memory = static_cast<uint8_t *>(mapped);
    ::close(fd);
    return memory != nullptr;
}

} // namespace Companion
} // namespace ZorvaneClient
