// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QVariant>

namespace ZorvaneClient {
namespace API {
namespace Internal {

/// What becomes of the client object when its request fails. Sign-in, roster, previews and
/// archive keep theirs, though nothing relies on it; a new request takes Release.
enum class OnError { Keep, Release };

/// How many clients of failed requests are kept, in all.
constexpr int maximumKeptClients = 1000;

/// Leaves a client without connections behind after a failure. When there are too many of them
/// the oldest is released: an outage of days would leave tens of thousands.
void keepFailedClient(QObject *client);

/// Hands the outcome of a one-shot exchange to one of two functors. `client` is a RestClient
/// or StreamerClient that lives until its reply.
template <typename Client, typename Received, typename Failed>
void watchExchange(Client *client, OnError onError, Received received, Failed failed)
{
    QObject::connect(client, &Client::responseReceived, client,
                     [client, received](const QVariant &response) {
                         client->deleteLater();
                         received(response);
                     });
    QObject::connect(client, &Client::error, client,
                     [client, onError, failed](int errorCode, int httpStatus) {
                         if (onError == OnError::Release)
                             client->deleteLater();
                         else
                             keepFailedClient(client);
                         failed(errorCode, httpStatus);
                     });
}

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
