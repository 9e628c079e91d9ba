// SPDX-License-Identifier: MIT
#pragma once

#include <QUrl>
#include <QUrlQuery>
#include <QVariantMap>

namespace ZorvaneClient {
namespace API {
namespace Internal {

/// Names and values in the map's order. What was percent-encoded beforehand stays as it is.
QUrlQuery queryOf(const QVariantMap &params);

/// The network layer normalises the path when it writes the request line, and that can cost
/// one of several leading slashes. What it will drop is added here.
QUrl withLeadingSlashesKept(const QUrl &url);

/// False for what a server must not point the program at: a local file, or a document inside
/// the address. An address without a scheme goes on, and fails for want of a host.
bool isFollowable(const QUrl &target);

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
