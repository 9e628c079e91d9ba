// SPDX-License-Identifier: MIT
#pragma once

#include "service/Accounts.h"
#include "service/Http.h"
#include "service/HttpStatus.h"
#include "service/PasswordGuard.h"
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

    Access(const RosterSource &source, const Accounts &sessions, PasswordGuard &passwords)
        : roster(source), accounts(sessions), guard(passwords)
    {
    }

    /// Goes by `server`, `camera` and `sessionId` of the request's query.
    Result check(const HttpRequest &request, Need need) const;
    /// The same for what was granted before: its password is no new try, so it counts for nothing,
    /// and that its peer is locked out since doesn't matter.
    bool isStillGranted(const HttpRequest &request, Need need) const;
    /// Whether the request's `sessionId` opens the LAN server.
    bool opens(const HttpRequest &request, const Server &server) const;

private:
    enum class Asked { First, Again };

    Result check(const HttpRequest &request, Need need, Asked asked) const;
    Result checkCloud(const HttpRequest &request, Need need) const;
    Result checkLan(const HttpRequest &request, Need need, Asked asked) const;

    const RosterSource &roster;
    const Accounts &accounts;
    PasswordGuard &guard;
};

} // namespace ZorvaneService
