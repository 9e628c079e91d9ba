// SPDX-License-Identifier: MIT
#include "API/CloudExchange.h"

#include "tests/support/Test.h"

#include "API/RestClient.h"

using namespace ZorvaneClient::API;

namespace {

/// A client in the middle of a request, watched.
QPointer<RestClient> askingClient()
{
    auto *client = new RestClient;
    Internal::watchExchange(
        client, Internal::OnError::Keep, [](const QVariant &) {}, [](int, int) {});
    return client;
}

void releaseWhatIsDue()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace

class CloudExchangeTest : public QObject
{
    Q_OBJECT

private slots:
    void keptClientsAreBounded()
    {
        constexpr int beyond = 50;
        QList<QPointer<RestClient>> clients;
        for (int i = 0; i < Internal::maximumKeptClients + beyond; ++i) {
            clients.append(askingClient());
            emit clients.last()->error(1, 500);
        }
        releaseWhatIsDue();
        for (int i = 0; i < clients.size(); ++i)
            QCOMPARE(!clients.at(i).isNull(), i >= beyond);
    }
};

QTEST_GUILESS_MAIN(CloudExchangeTest)
#include "CloudExchangeTest.moc"
