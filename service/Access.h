// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "service/Accounts.h"
#include "service/Http.h"
#include "service/HttpStatus.h"
#include "service/RosterSource.h"

namespace ZorvaneService {

/// Who may see which camera, for the cloud's streaming endpoint and for LAN servers alike.
class Access
{
public:
    enum class Need { Live, Archive };

    struct Result {
        int status = HttpStatus::Ok;
        CameraOfServer found; ///< where there is something to see

        bool isGranted() const { return status == HttpStatus::Ok; }
    };

    Access(const RosterSource &source, const Accounts &sessions)
        : roster(source), accounts(sessions)
    {
    }

    /// Goes by `server`, `camera` and `sessionId` of the request's query.
    Result check(const HttpRequest &request, Need need) const;
    /// True when `text` opens the LAN server.
    static bool isPassword(const Server &server, const std::string &text);

private:
    Result checkCloud(const HttpRequest &request, Need need) const;
    Result checkLan(const HttpRequest &request, Need need) const;

    const RosterSource &roster;
    const Accounts &accounts;
};

} // namespace ZorvaneService
