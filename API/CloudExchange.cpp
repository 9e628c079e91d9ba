// SPDX-License-Identifier: MIT
#include "API/CloudExchange.h"

#include <QPointer>
#include <QQueue>

namespace ZorvaneClient {
namespace API {
namespace Internal {

void keepFailedClient(QObject *client)
{
    static QQueue<QPointer<QObject>> kept;
    kept.enqueue(client);
    if (kept.size() <= maximumKeptClients)
        return;
    const QPointer<QObject> oldest = kept.dequeue();
    if (oldest)
        oldest->deleteLater();
}

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
