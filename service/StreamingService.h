// SPDX-License-Identifier: MIT
#pragma once

#include "service/Access.h"
#include "service/ArchiveCatalogue.h"
#include "service/Http.h"
#include "service/MediaLibrary.h"

namespace ZorvaneService {

/// `preview/live`, `archive/list` and `archive/days`, for the cloud's streaming endpoint and
/// for LAN servers. A refusal has an empty body, since these replies have no envelope.
class StreamingService
{
public:
    StreamingService(const Access &rules, const ArchiveCatalogue &archive,
                     const MediaLibrary &library)
        : access(rules), catalogue(archive), media(library)
    {
    }

    /// The cloud's endpoint: its paths begin with two slashes.
    HttpReply handle(const HttpRequest &request) const;

    HttpReply preview(const HttpRequest &request) const;
    HttpReply archiveList(const HttpRequest &request) const;
    HttpReply archiveDays(const HttpRequest &request) const;

private:
    /// Answers with what `describe` says of the camera and the span that is asked for.
    template <typename Describe>
    HttpReply archiveReply(const HttpRequest &request, Describe describe) const;

    const Access &access;
    const ArchiveCatalogue &catalogue;
    const MediaLibrary &media;
};

} // namespace ZorvaneService
