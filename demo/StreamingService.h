// SPDX-License-Identifier: MIT
#pragma once

#include "demo/Access.h"
#include "demo/ClipStore.h"
#include "demo/ServiceWords.h"
#include "service/Http.h"

namespace ZorvaneDemo {

/// `preview/live`, `archive/list` and `archive/days`, for the cloud's streaming endpoint and
/// for LAN servers. A refusal has an empty body, since these replies have no envelope.
class StreamingService
{
public:
    StreamingService(const Access &accessRules, const ClipStore &clipStore)
        : access(accessRules), clips(clipStore)
    {
    }

    /// The cloud's endpoint: its paths begin with two slashes.
    HttpReply handle(const HttpRequest &request) const;

    HttpReply preview(const HttpRequest &request) const;
    HttpReply archiveList(const HttpRequest &request) const;
    HttpReply archiveDays(const HttpRequest &request) const;

private:
    /// Answers with what `describe` says of the archive and the span that is asked for.
    template <typename Describe>
    HttpReply archiveReply(const HttpRequest &request, Describe describe) const;

    const Access &access;
    const ClipStore &clips;
};

} // namespace ZorvaneDemo
