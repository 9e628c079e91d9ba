// SPDX-License-Identifier: MIT
#include "server/SegmentWriter.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include "server/Ebml.h"
#include "server/MatroskaIds.h"

namespace ZorvaneServer {

namespace {

constexpr mode_t ownerOnly = 0600;
// Pictures that are all key frames don't need a cluster each.
constexpr std::int64_t shortestClusterMs = 1000;
// A block's time is told in two bytes.
constexpr std::int64_t longestClusterMs = 30'000;
constexpr std::size_t clusterIdBytes = 4;
constexpr std::uint8_t trackMark = 0x80;
constexpr std::uint8_t keyFlag = 0x80;
constexpr std::size_t blockHeader = 4;

bool writeAll(int file, const Bytes &bytes, std::uint64_t offset)
{
    return pwrite(file, bytes.data(), bytes.size(), static_cast<off_t>(offset)) ==
           static_cast<ssize_t>(bytes.size());
}

void appendCluster(std::int64_t timeMs, Bytes *out)
{
    Ebml::appendId(MatroskaId::Cluster, out);
    Ebml::appendSize(Ebml::unknownSize, out, Ebml::patchableSize);
    Ebml::appendUnsigned(MatroskaId::Timestamp, static_cast<std::uint64_t>(timeMs), out);
}

void appendBlockHead(const MediaPacket &packet, std::int64_t relativeMs, Bytes *out)
{
    Ebml::appendId(MatroskaId::SimpleBlock, out);
    Ebml::appendSize(blockHeader + packet.data.size(), out);
    out->push_back(static_cast<std::uint8_t>(trackMark | unsigned(packet.track)));
    out->push_back(static_cast<std::uint8_t>(relativeMs >> 8));
    out->push_back(static_cast<std::uint8_t>(relativeMs));
    const bool isKey = packet.isKey || packet.track == Track::Sound;
    out->push_back(isKey ? keyFlag : 0);
}

} // namespace

bool closeCluster(int file, const SegmentScan::Cluster &cluster)
{
    const std::uint64_t sizeAt = cluster.offset + clusterIdBytes;
    Bytes size;
    Ebml::appendSize(cluster.end - sizeAt - Ebml::patchableSize, &size, Ebml::patchableSize);
    return writeAll(file, size, sizeAt);
}

bool writeHead(int file, const SegmentHead &head)
{
    return writeAll(file, head.encode(), 0);
}

std::unique_ptr<SegmentWriter> SegmentWriter::create(int folder, const std::string &fileName,
                                                     FormatPtr format, std::int64_t startMs)
{
    Descriptor file(
        openat(folder, fileName.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, ownerOnly));
    if (!file)
        return nullptr;
    // What nobody holds was left growing: it may have been taken up, or removed, just now.
    struct stat facts {
    };
    if ((flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) ||
        fstat(file.get(), &facts) != 0 || facts.st_nlink == 0) {
        errno = EEXIST;
        return nullptr;
    }
    std::unique_ptr<SegmentWriter> writer(
        new SegmentWriter(std::move(file), std::move(format), startMs));
    if (writeHead(writer->file.get(), writer->head))
        return writer;
    const int reason = errno != 0 ? errno : ENOSPC;
    unlinkat(folder, fileName.c_str(), 0);
    errno = reason;
    return nullptr;
}

SegmentWriter::SegmentWriter(Descriptor segmentFile, FormatPtr format, std::int64_t startMs)
    : file(std::move(segmentFile)), streamFormat(std::move(format))
{
    head.startMs = startMs;
    head.format = *streamFormat;
}

bool SegmentWriter::beginsCluster(const MediaPacket &packet, std::int64_t timeMs) const
{
    const std::int64_t ageMs = timeMs - clusterMs;
    return cluster == 0 || (packet.isKeyPicture() && ageMs >= shortestClusterMs) ||
           ageMs > longestClusterMs || ageMs < -longestClusterMs;
}

SegmentWriter::Outcome SegmentWriter::append(const MediaPacket &packet)
{
    const std::int64_t timeMs = std::max<std::int64_t>(packet.momentMs - head.startMs, 0);
    const bool isNew = beginsCluster(packet, timeMs);
    Bytes before;
    before.reserve(64);
    if (isNew)
        appendCluster(timeMs, &before);
    appendBlockHead(packet, isNew ? 0 : timeMs - clusterMs, &before);

    iovec parts[] = {{before.data(), before.size()},
                     {const_cast<std::uint8_t *>(packet.data.data()), packet.data.size()}};
    const std::size_t size = before.size() + packet.data.size();
    errno = 0;
    const ssize_t written = pwritev(file.get(), parts, 2, static_cast<off_t>(end));
    if (written != static_cast<ssize_t>(size)) {
        const bool noRoom = written >= 0 || errno == ENOSPC || errno == EDQUOT;
        if (ftruncate(file.get(), static_cast<off_t>(end)) != 0)
            return Outcome::Failed;
        return noRoom ? Outcome::NoRoom : Outcome::Failed;
    }
    if (isNew) {
        // A cluster that doesn't say where it ends is as good, only slower to pass.
        closeCluster();
        cluster = end;
        clusterMs = timeMs;
        if (packet.isKeyPicture())
            head.keyFrames.push_back({timeMs, end});
    }
    end += size;
    if (packet.track == Track::Video)
        length.take(timeMs);
    return Outcome::Written;
}

bool SegmentWriter::closeCluster() const
{
    return cluster == 0 || ZorvaneServer::closeCluster(file.get(), {cluster, end});
}

bool SegmentWriter::sync() const
{
    return fdatasync(file.get()) == 0;
}

bool SegmentWriter::finish()
{
    head.lengthMs = lengthMs();
    head.fileBytes = end;
    return closeCluster() && writeHead(file.get(), head) && sync();
}

} // namespace ZorvaneServer
