// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>

#include "service/Access.h"
#include "service/ApiService.h"
#include "service/FlvService.h"
#include "service/LanService.h"
#include "service/StreamingService.h"

namespace ZorvaneService {

/// All that the client asks for, for whatever cameras there are. Each part handles the requests
/// of one listener; what it is made of must outlive it.
class VideoService
{
public:
    VideoService(RosterSource &roster, const ArchiveCatalogue &archive, const MediaLibrary &media,
                 Accounts &accounts, std::string clientVersion)
        : access(roster, accounts)
        , api(roster, accounts, std::move(clientVersion))
        , streaming(access, archive, media)
        , flv(roster, access, archive, media)
        , lan(roster, streaming, flv)
    {
    }

private:
    const Access access;

public:
    ApiService api;
    StreamingService streaming;
    FlvService flv;
    LanService lan;
};

} // namespace ZorvaneService
