// SPDX-License-Identifier: MIT
#include "server/SegmentRecovery.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "server/Descriptor.h"
#include "server/SegmentScan.h"
#include "server/SegmentWriter.h"

namespace ZorvaneServer {

bool renameSegment(int folder, const SegmentName &part, const SegmentName &finished)
{
    return renameat2(folder, part.text().c_str(), folder, finished.text().c_str(),
                     RENAME_NOREPLACE) == 0;
}

std::optional<SegmentName> recoverSegment(int folder, const SegmentName &part)
{
    const std::string fileName = part.text();
    const Descriptor file(openat(folder, fileName.c_str(), O_RDWR | O_CLOEXEC));
    if (!file || (flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK))
        return {};
    errno = 0;
    FileWindow window(file.get());
    const FileWindow::View view = window.at(0, SegmentHead::bytes);
    auto head = SegmentHead::decode(view.data, view.size);
    const SegmentScan scan = SegmentScan::from(window, SegmentHead::bytes);
    if (!head || scan.keyFrames.empty()) {
        if (head || !window.reaches(SegmentHead::bytes))
            unlinkat(folder, fileName.c_str(), 0);
        return {};
    }
    for (const SegmentScan::Cluster &cluster : scan.open) {
        if (!closeCluster(file.get(), cluster))
            return {};
    }
    head->lengthMs = scan.lengthMs;
    head->fileBytes = scan.wholeEnd;
    head->keyFrames = scan.keyFrames;
    const SegmentName finished{part.startMs, head->lengthMs};
    if (ftruncate(file.get(), static_cast<off_t>(scan.wholeEnd)) != 0 ||
        !writeHead(file.get(), *head) || fdatasync(file.get()) != 0 ||
        !renameSegment(folder, part, finished))
        return {};
    return finished;
}

} // namespace ZorvaneServer
