// SPDX-License-Identifier: MIT
#include "API/CloudExchange.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTest>

#include "API/RestClient.h"

using namespace ZorvaneClient::API;
using Internal::OnError;

namespace {

/// A client in the middle of a request, watched.
QPointer<RestClient> askingClient(OnError onError)
{
    auto *client = new RestClient;
    Internal::watchExchange(
        client, onError, [](const QVariant &) {}, [](int, int) {});
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
    void answeredClientIsReleased_data();
    void answeredClientIsReleased();
    void failedClientIsKeptOrReleased();
    void keptClientsAreBounded();
};

void CloudExchangeTest::answeredClientIsReleased_data()
{
    QTest::addColumn<bool>("keep");
    QTest::newRow("kept on errors") << true;
    QTest::newRow("released on errors") << false;
}

void CloudExchangeTest::answeredClientIsReleased()
{
    QFETCH(bool, keep);

    const QPointer<RestClient> client = askingClient(keep ? OnError::Keep : OnError::Release);
    emit client->responseReceived(QVariant());
    QVERIFY(client); // it is in the middle of its own signal
    releaseWhatIsDue();
    QVERIFY(!client);
}

void CloudExchangeTest::failedClientIsKeptOrReleased()
{
    const QPointer<RestClient> kept = askingClient(OnError::Keep);
    const QPointer<RestClient> released = askingClient(OnError::Release);
    emit kept->error(1, 500);
    emit released->error(1, 500);
    releaseWhatIsDue();
    QVERIFY(kept);
    QVERIFY(!released);
}

void CloudExchangeTest::keptClientsAreBounded()
{
    constexpr int beyond = 50;
    QList<QPointer<RestClient>> clients;
    for (int i = 0; i < Internal::maximumKeptClients + beyond; ++i) {
        clients.append(askingClient(OnError::Keep));
        emit clients.last()->error(1, 500);
    }
    releaseWhatIsDue();
    for (int i = 0; i < clients.size(); ++i)
        QCOMPARE(!clients.at(i).isNull(), i >= beyond);
}

QTEST_GUILESS_MAIN(CloudExchangeTest)
#include "CloudExchangeTest.moc"
