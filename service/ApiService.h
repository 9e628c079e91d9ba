// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>
#include <string>
#include <utility>

#include "service/Accounts.h"
#include "service/Http.h"
#include "service/PasswordGuard.h"
#include "service/RosterSource.h"

namespace ZorvaneService {

/// The cloud API: every reply is `{"success": true, "response": ...}` or
/// `{"success": false, "response": {"code": ...}}`.
class ApiService
{
public:
    enum Error : int {
        wrongPassword = 10001,
        unknownSession = 10002,
        malformedRequest = 10003,
        notFound = 10004,
        signInRefused = 10005
    };

    ApiService(RosterSource &source, Accounts &accountBook, PasswordGuard &passwords,
               std::string clientVersion)
        : roster(source), accounts(accountBook), guard(passwords), version(std::move(clientVersion))
    {
    }

    HttpReply handle(const HttpRequest &request);
    /// What the update check is told.
    void setVersion(const std::string &newest);

private:
    HttpReply signIn(const HttpRequest &request);
    HttpReply signOut(const HttpRequest &request);
    HttpReply saveLayouts(const HttpRequest &request);
    HttpReply rotate(const HttpRequest &request);
    bool isSignedIn(const HttpRequest &request) const;

    RosterSource &roster;
    Accounts &accounts;
    PasswordGuard &guard;
    std::mutex mutex;
    std::string version;
};

} // namespace ZorvaneService
