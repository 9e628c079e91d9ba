// SPDX-License-Identifier: MIT
#pragma once

#include "demo/FlvService.h"
#include "demo/ServiceWords.h"
#include "demo/StreamingService.h"
#include "demo/World.h"
#include "service/Http.h"

namespace ZorvaneDemo {

/// The whole interface of a LAN video server; which one goes by the port of the request.
class LanService
{
public:
    LanService(const World &cameras, const StreamingService &streamingService,
               FlvService &flvService)
        : world(cameras), streaming(streamingService), flv(flvService)
    {
    }

    HttpReply handle(const HttpRequest &request) const;

private:
    HttpReply information(const HttpRequest &request, const Server &server) const;

    const World &world;
    const StreamingService &streaming;
    FlvService &flv;
};

} // namespace ZorvaneDemo
