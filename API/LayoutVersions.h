// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace ZorvaneClient {
namespace API {
namespace Internal {

/// Older contents of a layouts cache, beside it: "FILE.1" is the newest, "FILE.10" the oldest.
constexpr int keptLayoutVersions = 10;

/// To be called before `coming` replaces the content of `cacheFile`: when that would change the
/// list of layouts, the list that is there is kept, as long as there are not ten newer ones. A
/// kill at any moment leaves whole files, and loses none but the oldest.
void keepLayoutVersion(const QString &cacheFile, const QByteArray &coming);

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
