// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>

#include "service/Access.h"
#include "service/ApiService.h"
#include "service/FlvService.h"
#include "service/LanService.h"
#include "service/PasswordGuard.h"
#include "service/StreamingService.h"

namespace ZorvaneService {

/// All that the client asks for, for whatever cameras there are. Each part handles the requests
/// of one listener; what it is made of must outlive it.
class VideoService
{
public:
    VideoService(RosterSource &roster, const ArchiveCatalogue &archive, const MediaLibrary &media,
                 Accounts &accounts, std::string clientVersion, const PasswordRules &passwords = {})
        : guard(passwords)
        , access(roster, accounts, guard)
        , api(roster, accounts, guard, std::move(clientVersion))
        , streaming(access, archive, media)
        , flv(roster, access, archive, media)
        , lan(roster, access, streaming, flv)
    {
    }

private:
    PasswordGuard guard;
    const Access access;

public:
    ApiService api;
    StreamingService streaming;
    FlvService flv;
    LanService lan;
};

} // namespace ZorvaneService
