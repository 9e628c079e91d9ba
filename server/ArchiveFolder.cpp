// SPDX-License-Identifier: MIT
#include "server/ArchiveFolder.h"

#include <cerrno>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "server/SegmentRecovery.h"
#include "server/UtcTime.h"

namespace ZorvaneServer {

namespace {

constexpr mode_t ownerFolder = 0700;
constexpr mode_t ownerFile = 0600;
constexpr int mostSameStarts = 1000;

Descriptor openFolder(int parent, const char *name)
{
    return Descriptor(openat(parent, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

/// Opens a folder inside another one; makes it when it isn't there. Without the other one it
/// fails for the same reason.
Descriptor enter(int parent, const char *name)
{
    if (parent < 0)
        return {};
    if (mkdirat(parent, name, ownerFolder) != 0 && errno != EEXIST)
        return {};
    return openFolder(parent, name);
}

bool hasMarker(int folder)
{
    return folder >= 0 && faccessat(folder, ArchiveFolder::marker, F_OK, 0) == 0;
}

/// Calls `take(name)` for whatever is in the folder, hidden things left out.
template <typename Taker>
void forEachName(Descriptor folder, const Taker &take)
{
    const int fd = dup(folder.get());
    DIR *entries = fd < 0 ? nullptr : fdopendir(fd);
    if (!entries)
        return;
    while (const dirent *entry = readdir(entries)) {
        if (entry->d_name[0] != '.')
            take(static_cast<const char *>(entry->d_name));
    }
    closedir(entries);
}

} // namespace

bool ArchiveFolder::prepare() const
{
    if (mkdir(path.c_str(), ownerFolder) != 0 && errno != EEXIST)
        return false;
    const Descriptor root = openFolder(AT_FDCWD, path.c_str());
    return root &&
           Descriptor(openat(root.get(), marker, O_WRONLY | O_CREAT | O_CLOEXEC, ownerFile));
}

bool ArchiveFolder::isReady() const
{
    return hasMarker(openFolder(AT_FDCWD, path.c_str()).get());
}

std::string ArchiveFolder::identity() const
{
    struct stat facts {
    };
    const Descriptor root = openFolder(AT_FDCWD, path.c_str());
    if (!root || fstatat(root.get(), marker, &facts, 0) != 0)
        return {};
    // Another disk may have the same number of a device, and of a file.
    return std::to_string(facts.st_dev) + ' ' + std::to_string(facts.st_ino) + ' ' +
           std::to_string(facts.st_ctim.tv_sec) + '.' + std::to_string(facts.st_ctim.tv_nsec);
}

ArchiveFolder::Room ArchiveFolder::room() const
{
    struct statvfs facts {
    };
    if (statvfs(path.c_str(), &facts) != 0)
        return {};
    const auto block = static_cast<std::int64_t>(facts.f_frsize);
    return {static_cast<std::int64_t>(facts.f_blocks) * block,
            static_cast<std::int64_t>(facts.f_bavail) * block};
}

void ArchiveFolder::list(
    Catalogue &catalogue,
    const std::function<void(const StreamId &, const SegmentName &)> &found) const
{
    const Descriptor root = openFolder(AT_FDCWD, path.c_str());
    if (!root)
        return;
    std::vector<std::pair<StreamId, SegmentName>> growing;
    forEachName(openFolder(root.get(), "."), [&](const char *camera) {
        const Descriptor cameraFolder = openFolder(root.get(), camera);
        for (const Quality quality : {Quality::Main, Quality::Sub}) {
            const StreamId stream{camera, quality};
            const Descriptor days = openFolder(cameraFolder.get(), qualityName(quality));
            if (!days)
                continue;
            std::vector<SegmentName> names;
            forEachName(openFolder(days.get(), "."), [&](const char *day) {
                forEachName(openFolder(days.get(), day), [&](const char *file) {
                    const auto name = SegmentName::of(file);
                    if (name && name->isGrowing())
                        growing.emplace_back(stream, *name);
                    else if (name)
                        names.push_back(*name);
                });
            });
            catalogue.add(stream, names);
        }
    });
    for (const auto &[stream, name] : growing)
        found(stream, name);
}

std::string ArchiveFolder::dayPath(const StreamId &stream, std::int64_t startMs) const
{
    return path + '/' + stream.camera + '/' + qualityName(stream.quality) + '/' + utcDay(startMs);
}

std::string ArchiveFolder::pathOf(const StreamId &stream, const SegmentName &name) const
{
    return dayPath(stream, name.startMs) + '/' + name.text();
}

std::unique_ptr<SegmentWriter> ArchiveFolder::create(const StreamId &stream, FormatPtr format,
                                                     std::int64_t startMs) const
{
    // By descriptors from here on: what is checked is what is written to.
    const Descriptor root = openFolder(AT_FDCWD, path.c_str());
    if (!hasMarker(root.get())) {
        errno = ENOENT;
        return nullptr;
    }
    for (int i = 0; i < mostSameStarts; ++i) {
        const Descriptor camera = enter(root.get(), stream.camera.c_str());
        const Descriptor quality = enter(camera.get(), qualityName(stream.quality));
        const Descriptor day = enter(quality.get(), utcDay(startMs).c_str());
        if (!day)
            return nullptr;
        auto writer =
            SegmentWriter::create(day.get(), SegmentName{startMs, {}}.text(), format, startMs);
        if (writer)
            return writer;
        if (errno == EEXIST)
            ++startMs;
        else if (errno != ENOENT) // the day went with its last segment just now
            return nullptr;
    }
    return nullptr;
}

bool ArchiveFolder::rename(const StreamId &stream, const SegmentName &part,
                           const SegmentName &finished) const
{
    const Descriptor day = openFolder(AT_FDCWD, dayPath(stream, part.startMs).c_str());
    return day && renameSegment(day.get(), part, finished);
}

std::optional<SegmentName> ArchiveFolder::recover(const StreamId &stream,
                                                  const SegmentName &part) const
{
    const Descriptor day = openFolder(AT_FDCWD, dayPath(stream, part.startMs).c_str());
    return day ? recoverSegment(day.get(), part) : std::nullopt;
}

bool ArchiveFolder::remove(const StreamId &stream, const SegmentName &name) const
{
    if (unlink(pathOf(stream, name).c_str()) != 0 && errno != ENOENT)
        return false;
    rmdir(dayPath(stream, name.startMs).c_str());
    return true;
}

std::int64_t ArchiveFolder::sizeOf(const StreamId &stream, const SegmentName &name) const
{
    struct stat facts {
    };
    return stat(pathOf(stream, name).c_str(), &facts) == 0 ? facts.st_size : 0;
}

} // namespace ZorvaneServer
