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
/// list of layouts, the list that is there is kept, as long as there are not ten newer ones. The
/// ten newest are there at any moment, as whole files: one that a kill kept from becoming "FILE.1"
/// is "FILE.0", and a write that fails costs none.
void keepLayoutVersion(const QString &cacheFile, const QByteArray &coming);

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
