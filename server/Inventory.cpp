// SPDX-License-Identifier: MIT
#include "server/Inventory.h"

#include <cerrno>

#include "server/Log.h"

namespace ZorvaneServer {

Inventory::Inventory(const ArchiveFolder &archive, Catalogue &known)
    : folder(archive), catalogue(known)
{
}

void Inventory::take()
{
    listed = folder.identity();
    catalogue.forgetFinished();
    int left = 0;
    int recovered = 0;
    folder.list(catalogue, [&](const StreamId &stream, const SegmentName &part) {
        const auto finished = folder.recover(stream, part);
        if (finished) {
            catalogue.finish(stream, *finished, folder.sizeOf(stream, *finished));
            ++recovered;
        }
        left += finished || errno != EWOULDBLOCK ? 1 : 0;
    });
    Log::say("the archive holds " + std::to_string(catalogue.size()) + " segments");
    if (left > 0)
        Log::say(std::to_string(recovered) + " of " + std::to_string(left) +
                 " segments finished that were left unfinished");
}

bool Inventory::follow()
{
    const std::string now = folder.identity();
    if (now == listed)
        return false;
    listed = now;
    if (now.empty())
        return false;
    take();
    return true;
}

} // namespace ZorvaneServer
