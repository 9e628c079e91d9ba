// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QExplicitlySharedDataPointer>
#include <QList>
#include <QMetaType>
#include <QSharedData>

#include "API/Types.h"

namespace ZorvaneClient {
namespace GUI {

/// One recorded span that is still to be started.
struct PlaylistItem : QSharedData {
    PlaylistItem(const API::CameraPtr &ofCamera, const QDateTime &from, const QDateTime &until)
        : camera(ofCamera), start(from), end(until)
    {
    }

    API::CameraPtr camera;
    /// The record's start, or the playlist's first moment if that is later.
    QDateTime start;
    /// The record's end.
    QDateTime end;
};

using PlaylistItemPtr = QExplicitlySharedDataPointer<PlaylistItem>;

/// The spans still to start, ascending by their starts.
using Playlist = QList<PlaylistItemPtr>;

} // namespace GUI
} // namespace ZorvaneClient

Q_DECLARE_METATYPE(ZorvaneClient::GUI::Playlist)
