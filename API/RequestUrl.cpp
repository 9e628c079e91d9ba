// SPDX-License-Identifier: MIT
#include "API/RequestUrl.h"

namespace ZorvaneClient {
namespace API {
namespace Internal {

namespace {

int leadingSlashes(const QString &path)
{
    int count = 0;
    while (count < path.size() && path.at(count) == QLatin1Char('/'))
        ++count;
    return count;
}

} // namespace

QUrlQuery queryOf(const QVariantMap &params)
{
    QUrlQuery query;
    for (auto param = params.cbegin(); param != params.cend(); ++param)
        query.addQueryItem(param.key(), param.value().toString());
    return query;
}

QUrl withLeadingSlashesKept(const QUrl &url)
{
    const QString path = url.path(QUrl::FullyEncoded);
    const QString normalised = url.adjusted(QUrl::NormalizePathSegments).path(QUrl::FullyEncoded);
    const int lost = leadingSlashes(path) - leadingSlashes(normalised);
    if (lost <= 0)
        return url;
    QUrl kept = url;
    // The text is encoded already: taken for decoded, its percent signs would be encoded again.
    kept.setPath(QString(lost, QLatin1Char('/')) + path, QUrl::TolerantMode);
    return kept;
}

bool isFollowable(const QUrl &target)
{
    const QString scheme = target.scheme();
    return target.isValid() && (scheme.isEmpty() || scheme == QLatin1String("http") ||
                                scheme == QLatin1String("https"));
}

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
