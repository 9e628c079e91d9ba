// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QVariant>

namespace ZorvaneClient {
namespace API {
namespace Internal {

/// What becomes of the client object when its request fails. A kept one stays until the
/// process ends; it holds no connection.
enum class OnError { Keep, Release };

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
                         failed(errorCode, httpStatus);
                     });
}

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
