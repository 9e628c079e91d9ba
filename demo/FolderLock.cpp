// SPDX-License-Identifier: MIT
#include "demo/FolderLock.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace ZorvaneDemo {

FolderLock::FolderLock(const std::string &folder)
    : file(open((folder + "/lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600))
{
    while (isHeld() && flock(file, LOCK_EX) != 0 && errno == EINTR) {
    }
}

FolderLock::~FolderLock()
{
    if (isHeld())
        close(file);
}

} // namespace ZorvaneDemo
