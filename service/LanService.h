// SPDX-License-Identifier: MIT
#pragma once

#include "service/FlvService.h"
#include "service/Http.h"
#include "service/RosterSource.h"
#include "service/StreamingService.h"

namespace ZorvaneService {

/// The whole interface of a LAN video server; which one goes by the port of the request.
class LanService
{
public:
    LanService(const RosterSource &source, const Access &rules,
               const StreamingService &streamingService, FlvService &flvService)
        : roster(source), access(rules), streaming(streamingService), flv(flvService)
    {
    }

    HttpReply handle(const HttpRequest &request) const;

private:
    HttpReply information(const HttpRequest &request, const ServerWithCameras &owner) const;

    const RosterSource &roster;
    const Access &access;
    const StreamingService &streaming;
    FlvService &flv;
};

} // namespace ZorvaneService
