// SPDX-License-Identifier: MIT
#include "API/HTTPClient.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>
#include <QThread>

#include "tests/support/MisbehavingServer.h"

using ZorvaneClient::API::HTTPClient;
using namespace ZorvaneClient::Tests;

namespace {

constexpr qint64 listingDeadlineMs = 2000;

int networkThreadCount()
{
    int count = 0;
    const QDir tasks(QStringLiteral("/proc/self/task"));
    for (const QString &task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile name(tasks.filePath(task + QStringLiteral("/comm")));
        if (name.open(QIODevice::ReadOnly) && name.readAll().startsWith("QNetworkAccess"))
            ++count;
    }
    return count;
}

} // namespace

/// What is left of requests when the application object goes.
class HTTPClientExitTest : public QObject
{
    Q_OBJECT

private slots:
    void noThreadOutlivesTheApplication();
};

void HTTPClientExitTest::noThreadOutlivesTheApplication()
{
    QList<QSharedPointer<HTTPClient>> clients;
    {
        int argc = 1;
        char program[] = "test";
        char *argv[] = {program, nullptr};
        QCoreApplication application(argc, argv);
        MisbehavingServer server;
        QVERIFY(server.start());
        server.setReply(WireReply::silence());
        constexpr int clientCount = 5;
        for (int i = 0; i < clientCount; ++i) {
            clients.append(QSharedPointer<HTTPClient>::create(QStringLiteral("127.0.0.1"),
                                                              server.port(), false, false));
            clients.last()->get(QStringLiteral("/"), QVariantMap(), true);
        }
        QTRY_COMPARE(server.requests().size(), clientCount);
        QCOMPARE(networkThreadCount(), clientCount);
    }
    // A thread that has ended can still be listed for a moment.
    QElapsedTimer clock;
    clock.start();
    while (networkThreadCount() > 0 && !clock.hasExpired(listingDeadlineMs))
        QThread::yieldCurrentThread();
    QCOMPARE(networkThreadCount(), 0);
}

QTEST_APPLESS_MAIN(HTTPClientExitTest)
#include "HTTPClientExitTest.moc"
