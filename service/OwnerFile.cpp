// SPDX-License-Identifier: MIT
#include "service/OwnerFile.h"

#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ZorvaneService {

namespace {

/// By its descriptor: a name could be another file's by now, in a folder that others write to.
bool giveToOwnerOfFolder(int file, const std::string &fileName)
{
    struct stat folder {
    };
    const std::size_t nameAt = fileName.rfind('/') + 1; // 0 without a slash
    const std::string path = nameAt == 0 ? "." : fileName.substr(0, nameAt);
    if (geteuid() != 0)
        return true;
    return stat(path.c_str(), &folder) == 0 && fchown(file, folder.st_uid, folder.st_gid) == 0;
}

} // namespace

bool writeOwnerFile(const std::string &fileName, const std::string &content)
{
    const std::string temporary = fileName + ".new";
    const int file =
        open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (file < 0)
        return false;
    // One left by an earlier run may be open to others.
    bool good = fchmod(file, 0600) == 0 && giveToOwnerOfFolder(file, fileName);
    for (std::size_t written = 0; good && written < content.size();) {
        const ssize_t count = write(file, content.data() + written, content.size() - written);
        good = count > 0;
        written += good ? static_cast<std::size_t>(count) : 0;
    }
    good = good && fsync(file) == 0;
    good = close(file) == 0 && good;
    return good && std::rename(temporary.c_str(), fileName.c_str()) == 0;
}

} // namespace ZorvaneService
