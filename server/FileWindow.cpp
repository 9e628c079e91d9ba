// SPDX-License-Identifier: MIT
#include "server/FileWindow.h"

#include <algorithm>

#include <sys/stat.h>
#include <unistd.h>

namespace ZorvaneServer {

namespace {

// Two headers are often a picture apart: more would be read for nothing.
constexpr std::size_t windowBytes = 4096;

} // namespace

FileWindow::View FileWindow::at(std::uint64_t offset, std::size_t wanted)
{
    if (offset < begin || offset + wanted > begin + window.size()) {
        window.resize(std::max(wanted, windowBytes));
        const ssize_t got = pread(fd, window.data(), window.size(), static_cast<off_t>(offset));
        window.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
        begin = offset;
    }
    const std::size_t at = offset - begin;
    return {window.data() + at, std::min(wanted, window.size() - at)};
}

bool FileWindow::reaches(std::uint64_t offset)
{
    struct stat facts {
    };
    if (offset > knownSize && fstat(fd, &facts) == 0)
        knownSize = static_cast<std::uint64_t>(facts.st_size);
    return offset <= knownSize;
}

} // namespace ZorvaneServer
