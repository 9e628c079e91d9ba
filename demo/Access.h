// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "demo/ServiceWords.h"
#include "demo/World.h"
#include "service/Accounts.h"
#include "service/Http.h"

namespace ZorvaneDemo {

/// Who may see which camera, for the cloud's streaming endpoint and for LAN servers alike.
class Access
{
public:
    enum class Need { Live, Archive };

    struct Result {
        int status = 200; ///< 403 or 404 when there is nothing to see
        Camera camera;
    };

    Access(const World &cameras, const Accounts &sessions) : world(cameras), accounts(sessions) {}

    /// Goes by `server`, `camera` and `sessionId` of the request's query.
    Result check(const HttpRequest &request, Need need) const;
    /// True when `text` opens the LAN server.
    static bool isPassword(const Server &server, const std::string &text);

private:
    Result checkCloud(const HttpRequest &request, Need need) const;
    Result checkLan(const HttpRequest &request, Need need) const;

    const World &world;
    const Accounts &accounts;
};

} // namespace ZorvaneDemo
