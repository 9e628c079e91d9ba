// SPDX-License-Identifier: MIT
#include "API/RosterJson.h"

#include <algorithm>

#include "API/Types.h"

namespace ZorvaneClient {
namespace API {
namespace Internal {

PaidState paidStateOf(const QVariantMap &services)
{
    if (services.isEmpty())
        return {};
    const QVariantMap enabled = services.value(QStringLiteral("enabled")).toMap();
    if (enabled.isEmpty())
        return {false, QStringLiteral("camera")};
    const QVariant active = enabled.value(QStringLiteral("active"));
    const QString text = active.toString();
    // The key also carries names of services, which convert to true but don't mean paid.
    const bool paid = active.toBool() && (text.isEmpty() || text == QLatin1String("true"));
    return {paid, text};
}

int rightsOf(const QVariantList &words)
{
    int rights = 0;
    for (const QVariant &entry : words) {
        const QString word = entry.toString();
        if (word == QLatin1String("live"))
            rights |= RightLive;
        else if (word == QLatin1String("archive"))
            rights |= RightArchive;
        else if (word == QLatin1String("ptz"))
            rights |= RightPtz;
    }
    return rights;
}

bool hasFunction(const QVariantMap &info, const QString &word)
{
    const QVariantList list = info.value(QStringLiteral("functions")).toList();
    return std::any_of(list.begin(), list.end(),
                       [&word](const QVariant &entry) { return entry.toString() == word; });
}

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
