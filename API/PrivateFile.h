// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace ZorvaneClient {
namespace API {
namespace Internal {

/// Replaces the content of `fileName` as a whole, readable by the owner only: a crash leaves
/// the old content or the new. Where the folder takes no new file the content is written in
/// place. False when it could not be written.
bool writePrivateFile(const QString &fileName, const QByteArray &content);

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
